#include "viewer/import/brep/step_tessellation.h"

#include "viewer/import/brep/step_text.h"
#include "viewer/text/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <set>
#include <string_view>
#include <utility>

namespace viewer
{

namespace
{

class TessellationReader
{
  public:
    TessellationReader(const StepText& text, LeftOutCounts& left_out) : text_(text), left_out_(left_out) {}

    std::vector<Tessellation> Read()
    {
        FindProducts();
        FindColors();
        for (const StepId id : text_.OfType("TESSELLATED_SHAPE_REPRESENTATION"))
            ReadRepresentation(id);
        for (const StepId id : text_.OfType("TESSELLATED_ANNOTATION_OCCURRENCE"))
            ReadAnnotation(id);
        return std::move(found_);
    }

  private:
    static constexpr int kMaxDepth = 10;

    /// The products of representations.
    void FindProducts()
    {
        for (const StepId id : text_.OfType("SHAPE_DEFINITION_REPRESENTATION")) {
            const auto values = text_.ValuesOf(id);
            if (values.size() >= 2)
                products_[StepReference(values[1])] = ProductOf(StepReference(values[0]));
        }
        for (const StepId id : text_.OfType("SHAPE_REPRESENTATION_RELATIONSHIP")) {
            const auto values = text_.ValuesOf(id);
            if (values.size() < 4)
                continue;
            for (const auto& [from, to] : {std::pair{2, 3}, std::pair{3, 2}})
                if (const auto known = products_.find(StepReference(values[static_cast<std::size_t>(from)]));
                    known != products_.end())
                    products_.emplace(StepReference(values[static_cast<std::size_t>(to)]), known->second);
        }
    }

    /// Follows a definition of a shape over the definition and the formation of a product.
    std::string ProductOf(StepId id) const
    {
        constexpr std::size_t kReference = 2;
        for (int depth = 0; depth < 3; ++depth) {
            const auto values = text_.ValuesOf(id);
            if (values.size() <= kReference)
                return {};
            id = StepReference(values[kReference]);
        }
        const auto values = text_.ValuesOf(id);
        if (values.size() < 2)
            return {};
        const std::string name = StepString(values[1]);
        return name.empty() ? StepString(values[0]) : name;
    }

    void FindColors()
    {
        for (const StepId id : text_.OfType("STYLED_ITEM")) {
            const auto values = text_.ValuesOf(id);
            if (values.size() < 3)
                continue;
            int steps = 0;
            if (const auto color = ColorIn(values[1], steps))
                colors_.emplace(StepReference(values[2]), *color);
        }
    }

    /// The first colour that the value refers to, over other entities.
    std::optional<std::array<unsigned char, 3>> ColorIn(std::string_view value, int& steps) const
    {
        constexpr int kMaxSteps = 100;
        for (const StepId id : StepReferences(value)) {
            if (++steps > kMaxSteps)
                return std::nullopt;
            const auto values = text_.ValuesOf(id);
            if (text_.TypeOf(id) == "COLOUR_RGB" && values.size() >= 4) {
                std::array<unsigned char, 3> color{};
                for (std::size_t i = 0; i < color.size(); ++i) {
                    const std::vector<double> channel = StepNumbers(values[i + 1]);
                    if (channel.size() != 1)
                        return std::nullopt;
                    color.at(i) =
                        static_cast<unsigned char>(std::lround(std::clamp(channel[0], 0.0, 1.0) * 255.0));
                }
                return color;
            }
            for (const std::string_view inner : values)
                if (const auto color = ColorIn(inner, steps))
                    return color;
        }
        return std::nullopt;
    }

    void ReadRepresentation(StepId id)
    {
        const auto values = text_.ValuesOf(id);
        if (values.size() < 3)
            return;
        scale_ = LengthUnitOf(text_, StepReference(values[2])).value_or(1.0);
        const auto product = products_.find(id);
        for (const StepId item : StepReferences(values[1])) {
            Tessellation whole;
            whole.product = product != products_.end() ? product->second : std::string();
            ReadItem(item, whole, 0);
            Add(std::move(whole));
        }
    }

    void ReadAnnotation(StepId id)
    {
        const auto values = text_.ValuesOf(id);
        if (values.size() < 3)
            return;
        scale_ = text_.FirstLengthUnit().value_or(1.0);
        Tessellation whole;
        whole.is_annotation = true;
        ReadItem(StepReference(values[2]), whole, 0);
        if (whole.faces.empty() && whole.lines.empty())
            ++left_out_["annotation"];
        Add(std::move(whole));
    }

    void Add(Tessellation whole)
    {
        if (!whole.faces.empty() || !whole.lines.empty())
            found_.push_back(std::move(whole));
    }

    void ReadItem(StepId id, Tessellation& whole, int depth)
    {
        // Each item is read once, whatever refers to it, so that the model is no larger than the file.
        if (!read_.insert(id).second)
            return;
        const std::string_view type = text_.TypeOf(id);
        const auto values = text_.ValuesOf(id);
        if (const auto color = colors_.find(id); color != colors_.end() && !whole.color)
            whole.color = color->second;
        if (depth == 0 && !values.empty())
            whole.name = StepString(values[0]);
        const bool is_body = type == "TESSELLATED_SOLID" || type == "TESSELLATED_SHELL";
        if (is_body || type == "TESSELLATED_GEOMETRIC_SET") {
            // The exact body that a tessellated one refers to is drawn instead.
            const bool is_exact = is_body && values.size() >= 3 && StepReference(values[2]) != 0;
            if (values.size() >= 2 && !is_exact && depth < kMaxDepth)
                for (const StepId inner : StepReferences(values[1]))
                    ReadItem(inner, whole, depth + 1);
        } else if (type == "TRIANGULATED_FACE" && values.size() >= 7) {
            ReadTriangles(values, 5, whole);
        } else if (type == "TRIANGULATED_SURFACE_SET" && values.size() >= 6) {
            ReadTriangles(values, 4, whole);
        } else if (type == "COMPLEX_TRIANGULATED_FACE" && values.size() >= 8) {
            ReadStrips(values, 5, whole);
        } else if (type == "COMPLEX_TRIANGULATED_SURFACE_SET" && values.size() >= 7) {
            ReadStrips(values, 4, whole);
        } else if (type == "TESSELLATED_CURVE_SET" && values.size() >= 3) {
            ReadCurves(values, whole);
        } else if (type.starts_with("TESSELLATED_") || type.find("TRIANGULATED") != std::string_view::npos ||
                   type.empty()) {
            ++left_out_["tessellated item"];
        }
    }

    using Values = std::vector<std::string_view>;

    /// The points of a face or of curves: those of a list that an index list selects, or all without one.
    struct Points {
        const std::vector<Point>& all;
        std::vector<double> selected;

        [[nodiscard]] std::optional<Point> At(double index) const
        {
            if (selected.empty())
                return TessellationReader::At(all, index);
            const auto inner = TessellationReader::At(selected, index);
            return inner ? TessellationReader::At(all, *inner) : std::nullopt;
        }
    };

    template <typename Item>
    static std::optional<Item> At(const std::vector<Item>& items, double index)
    {
        if (!(index >= 1.0) || index > static_cast<double>(items.size()))
            return std::nullopt;
        return items[static_cast<std::size_t>(index) - 1];
    }

    Points PointsOf(std::string_view coordinates, std::string_view indices)
    {
        return {CoordinatesOf(StepReference(coordinates)), StepNumbers(indices)};
    }

    /// Many faces share a list of coordinates.
    const std::vector<Point>& CoordinatesOf(StepId id)
    {
        const auto [entry, is_new] = coordinates_.emplace(std::pair(id, scale_), std::vector<Point>());
        std::vector<Point>& points = entry->second;
        const auto values = text_.ValuesOf(id);
        if (!is_new || values.size() < 3)
            return points;
        const std::vector<double> numbers = StepNumbers(values[2]);
        points.reserve(numbers.size() / 3);
        for (std::size_t i = 0; i + 2 < numbers.size(); i += 3)
            points.push_back(Point{numbers[i], numbers[i + 1], numbers[i + 2]} * scale_);
        return points;
    }

    void AddTriangle(const Points& points, const std::array<double, 3>& indices, Tessellation& whole)
    {
        std::vector<Point> corners;
        for (const double index : indices)
            if (const auto point = points.At(index); point && IsFinite(*point))
                corners.push_back(*point);
        if (corners.size() < indices.size())
            ++left_out_["triangle without corners"];
        else if (auto face = MakeFace(std::move(corners)))
            whole.faces.push_back(std::move(*face));
    }

    void ReadTriangles(const Values& values, std::size_t index_list, Tessellation& whole)
    {
        const Points points = PointsOf(values[1], values[index_list]);
        const std::vector<double> indices = StepNumbers(values[index_list + 1]);
        for (std::size_t i = 0; i + 2 < indices.size(); i += 3)
            AddTriangle(points, {indices[i], indices[i + 1], indices[i + 2]}, whole);
    }

    void ReadStrips(const Values& values, std::size_t index_list, Tessellation& whole)
    {
        const Points points = PointsOf(values[1], values[index_list]);
        for (const std::vector<double>& strip : StepNumberLists(values[index_list + 1]))
            for (std::size_t i = 2; i < strip.size(); ++i)
                AddTriangle(points,
                            i % 2 == 0 ? std::array{strip[i - 2], strip[i - 1], strip[i]}
                                       : std::array{strip[i - 1], strip[i - 2], strip[i]},
                            whole);
        for (const std::vector<double>& fan : StepNumberLists(values[index_list + 2]))
            for (std::size_t i = 2; i < fan.size(); ++i)
                AddTriangle(points, {fan[0], fan[i - 1], fan[i]}, whole);
    }

    void ReadCurves(const Values& values, Tessellation& whole)
    {
        const Points points = PointsOf(values[1], {});
        for (const std::vector<double>& line : StepNumberLists(values[2]))
            for (std::size_t i = 1; i < line.size(); ++i) {
                const auto from = points.At(line[i - 1]);
                const auto to = points.At(line[i]);
                if (from && to && *from != *to && IsFinite(*from) && IsFinite(*to))
                    whole.lines.push_back({*from, *to});
            }
    }

    const StepText& text_;
    LeftOutCounts& left_out_;
    std::map<StepId, std::string> products_;
    std::map<StepId, std::array<unsigned char, 3>> colors_;
    /// By entity and unit.
    std::map<std::pair<StepId, double>, std::vector<Point>> coordinates_;
    std::set<StepId> read_;
    double scale_ = 1.0; ///< the length unit in millimetres
    std::vector<Tessellation> found_;
};

} // namespace

std::vector<Tessellation> ReadTessellations(const std::string& path, LeftOutCounts& left_out)
{
    if (!FileHasOneOf(path, std::array<std::string_view, 1>{"COORDINATES_LIST"}))
        return {};
    const StepText text(path);
    return TessellationReader(text, left_out).Read();
}

} // namespace viewer
