// The figures of a run, as --stats prints them.
#pragma once

#include "viewer/scene/model.h"

#include <cstddef>
#include <string>

namespace viewer
{

/// Figures from the host's own bookkeeping and from the counter of drawn frames; seconds, and the files'
/// units.
struct Stats {
    std::size_t files = 0; ///< read; none for the bundled model
    std::size_t entities = 0;
    std::size_t faces = 0;
    Box extents;
    double load_s = 0.0;        ///< reading the files
    double first_frame_s = 0.0; ///< from the program's start to its first frame
    double fps = 0.0;           ///< frames drawn per second
    std::string renderer;
};

/// One JSON object in one line.
[[nodiscard]] std::string ToJson(const Stats& stats);

} // namespace viewer
