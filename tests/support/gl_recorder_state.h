// What the recorder's objects and its entry points share. For those two sources alone.
#pragma once

#include "tests/support/gl_recorder.h"

#include <vector>

namespace karv_test
{

struct RecorderState {
    GlRecording* recording = nullptr; ///< the innermost
    std::vector<GlHook*> hooks;
    std::vector<GlAnswer*> answers;
    std::vector<GlRefusal*> refusals;
    int inside_glu = 0; ///< calls under way whose own GL calls are not the module's
};

RecorderState& State();

} // namespace karv_test
