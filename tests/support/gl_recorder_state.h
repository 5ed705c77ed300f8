// State shared by the recorder's objects and its entry points. Only for those two sources.
#pragma once

#include <vector>

namespace karv_test
{

class GlRecording;
class GlHook;
class GlAnswer;
class GlRefusal;

struct RecorderState {
    GlRecording* recording = nullptr; ///< the innermost recording
    std::vector<GlHook*> hooks;
    std::vector<GlAnswer*> answers;
    std::vector<GlRefusal*> refusals;
    int inside_glu = 0; ///< the number of open calls whose own GL calls are not the module's
};

/// One for the test program.
inline RecorderState& Recorder()
{
    static RecorderState state;
    return state;
}

} // namespace karv_test
