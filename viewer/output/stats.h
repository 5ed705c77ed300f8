// The figures of a run that --stats prints.
#pragma once

#include "viewer/scene/model.h"

#include <cstddef>
#include <string>
#include <vector>

namespace viewer
{

/// Times are in seconds, lengths in the unit of the files.
struct Stats {
    std::size_t files = 0; ///< that were read; 0 for the bundled model
    std::size_t entities = 0;
    std::size_t faces = 0;
    std::vector<LeftOut> left_out; ///< parts of the files that are not shown
    Box extents;
    double load_s = 0.0;        ///< for reading the files
    double first_frame_s = 0.0; ///< from the program's start to its first frame
    double fps = 0.0;           ///< frames per second
    std::string renderer;
};

/// One JSON object in one line.
[[nodiscard]] std::string ToJson(const Stats& stats);

} // namespace viewer
