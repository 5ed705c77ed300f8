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
    std::vector<std::string> models; ///< none for the bundled one
    std::optional<std::string> picture;
    std::optional<std::string> sheet;
    std::optional<std::string> trace;
    std::optional<PictureSize> size;
    std::optional<int> color;   ///< palette index for every face
    std::optional<float> alpha; ///< opacity for every face
    bool headless = false;
    bool windows = false; ///< one for each model
    bool stats = false;
    bool list = false;
    std::optional<double> deflection; ///< in the units of the files; above 0 and finite
};

/// What became of a command line: options, or an end to the program with a status.
struct ParsedOptions {
    std::optional<Options> options;
    int exit_status = 0; ///< where there are no options
};

/// Reads the arguments of the program (the first is its name). Asked for help or the version, prints it to
/// `out`; finds a mistake, prints one line to `err` and ends with status 2.
[[nodiscard]] ParsedOptions ParseOptions(int argc, const char* const* argv, std::ostream& out,
                                         std::ostream& err);

} // namespace viewer
