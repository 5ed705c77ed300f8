// The command line of karv-view.
#pragma once

#include "viewer/output/picture.h"
#include "viewer/window/view_options.h"

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace viewer
{

struct Options {
    ViewOptions drawing;
    std::vector<std::string> models; ///< files; empty for the bundled model
    std::optional<std::string> picture;
    std::optional<std::string> sheet;
    std::optional<std::string> trace;
    std::optional<PictureSize> size;
    std::optional<int> color;   ///< palette index for every face
    std::optional<float> alpha; ///< opacity for every face
    bool headless = false;
    bool windows = false; ///< a window for each model
    bool stats = false;
    bool list = false;
    std::optional<double> deflection; ///< in the units of the files; above 0 and finite
};

/// The result of a command line: options, or the status with which the program ends.
struct ParsedOptions {
    std::optional<Options> options;
    int exit_status = 0; ///< where there are no options
};

/// Parses the arguments of the program; the first one is its name. Help and version are printed to `out` and
/// end with status 0. A mistake is reported in one line on `err` and ends with status 2.
[[nodiscard]] ParsedOptions ParseOptions(int argc, const char* const* argv, std::ostream& out,
                                         std::ostream& err);

} // namespace viewer
