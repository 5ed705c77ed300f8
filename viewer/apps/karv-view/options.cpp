#include "viewer/apps/karv-view/options.h"

#include "viewer/text/text.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <ostream>
#include <string_view>
#include <system_error>

namespace viewer
{

namespace
{

constexpr int kUsageStatus = 2;

std::optional<int> ToInteger(std::string_view text)
{
    int value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc{} || stop != end || text.empty())
        return std::nullopt;
    return value;
}

/// The numbers of a list like "1,2,3"; nothing where one of them is not a number from `low` to `high`.
std::optional<std::vector<int>> ToList(std::string_view text, char separator, int low, int high)
{
    std::vector<int> values;
    for (;;) {
        const std::size_t end = text.find(separator);
        const auto value = ToInteger(text.substr(0, end));
        if (!value || *value < low || *value > high)
            return std::nullopt;
        values.push_back(*value);
        if (end == std::string_view::npos)
            return values;
        text.remove_prefix(end + 1);
    }
}

void SetSize(Options& options, const std::string& text)
{
    const auto sides = ToList(text, 'x', 1, kMaxPictureSide);
    if (!sides || sides->size() != 2)
        throw CLI::ValidationError("--size", "'" + text + "' is not WxH with sides of 1 to " +
                                                 std::to_string(kMaxPictureSide) + " pixels");
    options.size = PictureSize{sides->at(0), sides->at(1)};
}

void SetBackground(Options& options, const std::string& text)
{
    const auto channels = ToList(text, ',', 0, 255);
    if (!channels || channels->size() != 3)
        throw CLI::ValidationError("--background", "'" + text + "' is not R,G,B with 0 to 255 each");
    options.drawing.background = std::array{channels->at(0), channels->at(1), channels->at(2)};
}

void SetHidden(Options& options, const std::string& text)
{
    constexpr int kMaxCategory = 1'000'000;
    // NOTE: CLI11 joins the values of an option that is given twice with line feeds.
    std::string list = text;
    std::replace(list.begin(), list.end(), '\n', ',');
    const auto categories = ToList(list, ',', 0, kMaxCategory);
    if (!categories)
        throw CLI::ValidationError("--hide", "'" + text + "' is not a list of categories like 0,2");
    options.drawing.hidden.insert(options.drawing.hidden.end(), categories->begin(), categories->end());
}

void SetAlpha(Options& options, const std::string& text)
{
    float alpha = 0.0F;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, alpha);
    // NaN fails every comparison.
    const bool in_range = alpha >= 0.0F && alpha <= 1.0F;
    if (error != std::errc{} || stop != end || !in_range)
        throw CLI::ValidationError("--alpha", "'" + text + "' is not a number from 0 to 1");
    options.alpha = alpha;
}

void SetDeflection(Options& options, const std::string& text)
{
    double deflection = 0.0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, deflection);
    if (error != std::errc{} || stop != end || !std::isfinite(deflection) || deflection <= 0.0)
        throw CLI::ValidationError("--deflection", "'" + text + "' is not a number above 0");
    options.deflection = deflection;
}

/// The error for the name of a picture to write; empty for a name that ends in ".png" or has no ending.
std::string PngNameComplaint(const std::string& path)
{
    const std::string ending = LowerCaseExtension(path);
    return ending.empty() || ending == ".png"
               ? std::string()
               : "'" + path + "' does not end in .png: pictures are written as PNG files only";
}

std::vector<std::string> ViewNames()
{
    std::vector<std::string> names;
    names.reserve(kStandardViews.size());
    for (const StandardView view : kStandardViews)
        names.emplace_back(NameOf(view));
    return names;
}

void AddPictureOptions(CLI::App& app, Options& options)
{
    CLI::Option* const list =
        app.add_flag("--list", options.list,
                     "Print the tree of assemblies and pieces with categories, colours and counts, and exit");
    app.add_option("--picture", options.picture, "Draw one picture without showing a window, and exit")
        ->excludes(list)
        ->check(PngNameComplaint)
        ->option_text("FILE.png");
    app.add_option("--sheet", options.sheet, "Draw the ten standard views on one labelled sheet, and exit")
        ->excludes(list)
        ->check(PngNameComplaint)
        ->option_text("FILE.png");
    app.add_option_function<std::string>(
           "--view", [&](const std::string& name) { options.drawing.view = StandardViewNamed(name); },
           "front back left right top bottom se sw ne nw (default se; top for a flat drawing)")
        ->check(CLI::IsMember(ViewNames()))
        ->option_text("NAME");
    app.add_option_function<std::string>(
           "--projection",
           [&](const std::string& name) {
               options.drawing.projection =
                   name == "parallel" ? Projection::Parallel : Projection::Perspective;
           },
           "perspective or parallel (default perspective; parallel for a flat drawing)")
        ->check(CLI::IsMember(std::vector<std::string>{"perspective", "parallel"}))
        ->option_text("NAME");
    app.add_option_function<std::string>(
           "--mode", [&](const std::string& name) { options.drawing.lines = name == "lines"; },
           "faces or lines (default faces)")
        ->check(CLI::IsMember(std::vector<std::string>{"faces", "lines"}))
        ->option_text("NAME");
    app.add_option_function<std::string>(
           "--edges", [&](const std::string& name) { options.drawing.edges = name == "on"; },
           "Draw edges over faces: on or off (default on)")
        ->check(CLI::IsMember(std::vector<std::string>{"on", "off"}))
        ->option_text("NAME");
    app.add_option_function<std::string>(
           "--size", [&](const std::string& text) { SetSize(options, text); },
           "Size of the picture file in pixels (default 1024x768; a sheet has cells of 320x240)")
        ->option_text("WxH");
}

void AddDrawingOptions(CLI::App& app, Options& options)
{
    constexpr int kMaxColor = 255;
    app.add_option_function<std::string>(
           "--light",
           [&](const std::string& name) {
               options.drawing.light = name == "eye"    ? Light::Eye
                                       : name == "none" ? Light::None
                                                        : Light::Shoulder;
           },
           "Light from over the shoulder, from the eye, or none (default shoulder)")
        ->check(CLI::IsMember(std::vector<std::string>{"shoulder", "eye", "none"}))
        ->option_text("NAME");
    app.add_option_function<std::string>(
           "--background", [&](const std::string& text) { SetBackground(options, text); },
           "Background colour, 0 to 255 each")
        ->option_text("R,G,B");
    app.add_option("--color", options.color, "Colour index 0 to 255 for every face")
        ->check(CLI::Range(0, kMaxColor))
        ->option_text("N");
    app.add_option_function<std::string>(
           "--alpha", [&](const std::string& text) { SetAlpha(options, text); },
           "Opacity 0 to 1 for every face; shows with --transparent")
        ->option_text("A");
    app.add_flag("--transparent", options.drawing.transparent, "Create the control for transparent drawing");
    app.add_option_function<std::string>(
           "--hide", [&](const std::string& text) { SetHidden(options, text); },
           "Categories to hide, by their numbers in --list: layers, assemblies, colours or materials")
        ->excludes(app.get_option("--list"))
        ->multi_option_policy(CLI::MultiOptionPolicy::Join)
        ->option_text("N[,N...]");
}

void AddRunOptions(CLI::App& app, Options& options)
{
    app.add_option_function<std::string>(
           "--deflection", [&](const std::string& text) { SetDeflection(options, text); },
           "How far facets may lie from curved faces and curves, in the file's unit, above 0 (default: half "
           "a pixel to a pixel of the picture of the whole model)")
        ->option_text("NUMBER");
    app.add_flag("--headless", options.headless, "Never open a window on a display");
    app.add_flag("--windows", options.windows, "Show each model in a window of its own");
    app.add_option("--trace", options.trace, "Write the trace of the control's calls")
        ->option_text("FILE.json");
    app.add_flag("--stats", options.stats, "Print figures as one JSON object");
    app.add_option("MODEL", options.models,
                   "Model files, shown together (STEP, IGES, BREP, DXF, OBJ, STL, PLY, OFF, glTF and more); "
                   "a bundled "
                   "model without any")
        ->option_text("FILE...");
}

} // namespace

ParsedOptions ParseOptions(int argc, const char* const* argv, std::ostream& out, std::ostream& err)
{
    Options options;
    CLI::App app("Shows models in the KARV3DViewport10 viewport.", "karv-view");
    constexpr std::size_t kColumn = 26;
    app.get_formatter()->column_width(kColumn);
    app.set_version_flag("--version", "karv-view " KARV_VERSION, "Print the version and exit");
    AddPictureOptions(app, options);
    AddDrawingOptions(app, options);
    AddRunOptions(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& request) {
        return {std::nullopt, app.exit(request, out, err)};
    } catch (const CLI::ParseError& error) {
        err << "karv-view: " << OneLine(error.what()) << " (--help lists the options)\n";
        return {std::nullopt, kUsageStatus};
    }
    return {std::move(options), 0};
}

} // namespace viewer
