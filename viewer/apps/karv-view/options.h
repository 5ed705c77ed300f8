// The command line of karv-view.
#pragma once

#include "viewer/scene/standard_view.h"

#include <array>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace viewer
{

/// Width and height in pixels.
struct PictureSize {
    int width = 1024;
    int height = 768;

    bool operator==(const PictureSize&) const = default;
};

/// The longest side of a picture.
inline constexpr int kLongestSide = 8192;

struct Options {
    std::vector<std::string> models; ///< none for the bundled one
    std::optional<std::string> picture;
    std::optional<std::string> sheet;
    std::optional<std::string> trace;
    StandardView view = StandardView::SE;
    Projection projection = Projection::Perspective;
    bool lines = false;
    std::optional<PictureSize> size;
    std::optional<std::array<int, 3>> background; ///< red, green, blue, 0 to 255
    std::optional<int> color;                     ///< palette index for every face
    std::optional<float> alpha;                   ///< opacity for every face
    bool transparent = false;
    std::vector<int> hidden; ///< categories
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
