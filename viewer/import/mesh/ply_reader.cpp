#include "viewer/import/mesh/ply_reader.h"

#include "viewer/import/damaged_file.h"
#include "viewer/import/mesh/model_builder.h"
#include "viewer/import/mesh/text_scanner.h"
#include "viewer/import/mesh/texture_store.h"
#include "viewer/text/text.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace viewer
{

namespace
{

enum class Scalar : unsigned char { Int8, Uint8, Int16, Uint16, Int32, Uint32, Float, Double };

std::optional<Scalar> ScalarOf(std::string_view name)
{
    constexpr std::array<std::pair<std::string_view, Scalar>, 16> kNames = {{
        {"char", Scalar::Int8},
        {"int8", Scalar::Int8},
        {"uchar", Scalar::Uint8},
        {"uint8", Scalar::Uint8},
        {"short", Scalar::Int16},
        {"int16", Scalar::Int16},
        {"ushort", Scalar::Uint16},
        {"uint16", Scalar::Uint16},
        {"int", Scalar::Int32},
        {"int32", Scalar::Int32},
        {"uint", Scalar::Uint32},
        {"uint32", Scalar::Uint32},
        {"float", Scalar::Float},
        {"float32", Scalar::Float},
        {"double", Scalar::Double},
        {"float64", Scalar::Double},
    }};
    const auto* const found = std::ranges::find(kNames, name, &std::pair<std::string_view, Scalar>::first);
    return found == kNames.end() ? std::nullopt : std::optional(found->second);
}

/// Use of a property of an element.
enum class Use : unsigned char {
    None,
    X,
    Y,
    Z,
    Red,
    Green,
    Blue,
    Alpha,
    U,
    V,
    Vertex1,
    Vertex2,
    Count, ///< of the above
    Indices,
    TexturePoints
};

constexpr auto kUseCount = static_cast<std::size_t>(Use::Count);

Use UseOf(std::string_view name, bool is_list)
{
    constexpr std::array<std::pair<std::string_view, Use>, 24> kScalars = {{
        {"x", Use::X},
        {"y", Use::Y},
        {"z", Use::Z},
        {"red", Use::Red},
        {"green", Use::Green},
        {"blue", Use::Blue},
        {"alpha", Use::Alpha},
        {"r", Use::Red},
        {"g", Use::Green},
        {"b", Use::Blue},
        {"a", Use::Alpha},
        {"diffuse_red", Use::Red},
        {"diffuse_green", Use::Green},
        {"diffuse_blue", Use::Blue},
        {"u", Use::U},
        {"v", Use::V},
        {"s", Use::U},
        {"t", Use::V},
        {"texture_u", Use::U},
        {"texture_v", Use::V},
        {"texture_s", Use::U},
        {"texture_t", Use::V},
        {"vertex1", Use::Vertex1},
        {"vertex2", Use::Vertex2},
    }};
    if (is_list) {
        const bool has_indices = name == "vertex_indices" || name == "vertex_index";
        return has_indices ? Use::Indices : name == "texcoord" ? Use::TexturePoints : Use::None;
    }
    const auto* const found = std::ranges::find(kScalars, name, &std::pair<std::string_view, Use>::first);
    return found == kScalars.end() ? Use::None : found->second;
}

struct Property {
    Use use = Use::None;
    Scalar type = Scalar::Float;
    std::optional<Scalar> count_type; ///< of a list
};

enum class ElementKind : unsigned char { Other, Vertex, Face, Strip, Edge };

ElementKind ElementKindOf(std::string_view name)
{
    if (name == "vertex")
        return ElementKind::Vertex;
    if (name == "face")
        return ElementKind::Face;
    if (name == "tristrips")
        return ElementKind::Strip;
    return name == "edge" ? ElementKind::Edge : ElementKind::Other;
}

struct Element {
    ElementKind kind = ElementKind::Other;
    std::size_t count = 0;
    std::vector<Property> properties;
};

enum class Format : unsigned char { Ascii, LittleEndian, BigEndian };

/// The values of one element. A missing scalar is NaN.
struct Values {
    std::array<double, kUseCount> scalars{};
    std::vector<long long> indices;
    std::vector<double> texture_points;

    [[nodiscard]] double At(Use use) const { return scalars.at(static_cast<std::size_t>(use)); }
};

struct Vertex {
    Point point;
    FileColor color;
    TexturePoint texture_point;
};

/// A polygon; a line if it has two corners, a point if it has one.
struct Part {
    std::size_t first; ///< in the list of all corners
    std::size_t count;
    std::optional<FileColor> color;
};

class PlyReader
{
  public:
    PlyReader(const std::string& path, const ProgressFunction& progress)
        : path_(path), progress_(progress, 0.7), text_(ReadWholeFile(path)), scanner_("")
    {
    }

    Model Read()
    {
        ReadHeader();
        for (const Element& element : elements_) {
            // The minimum size of an element is a byte. Elements without properties have no data.
            if (element.count > text_.size())
                ThrowTooFewElements();
            for (std::size_t i = 0; i < element.count && !element.properties.empty(); ++i) {
                ReadElement(element);
                Take(element.kind);
                progress_.Parsed(FractionParsed());
            }
        }
        AddParts();
        builder_.LeaveOut("texture", textures_.Missing());
        return builder_.Finish(path_);
    }

  private:
    [[noreturn]] void ThrowTooFewElements() const { ThrowTruncated(path_, "fewer elements than it states"); }

    void ReadHeader()
    {
        if (!text_.starts_with("ply"))
            ThrowDamaged(path_, "no PLY header");
        bool has_format = false;
        for (;;) {
            const std::string_view line = HeaderLine();
            if (line == "end_header")
                break;
            TextScanner words(line);
            const std::string_view keyword = words.Word();
            if (keyword == "format") {
                ReadFormat(words.Word());
                has_format = true;
            } else if (keyword == "element") {
                AddElement(words);
            } else if (keyword == "property") {
                AddProperty(words);
            } else if (keyword == "comment" && words.Word() == "TextureFile") {
                texture_name_ = words.Rest();
            }
        }
        if (!has_format)
            ThrowDamaged(path_, "no format");
        if (format_ == Format::Ascii)
            scanner_ = TextScanner(std::string_view(text_).substr(position_));
    }

    /// The next line of the header without its end.
    std::string_view HeaderLine()
    {
        const std::size_t end = text_.find_first_of("\r\n", position_);
        if (end == std::string::npos)
            ThrowDamaged(path_, "the header does not end");
        const std::string_view line = Trimmed(std::string_view(text_).substr(position_, end - position_));
        position_ = end + (text_.compare(end, 2, "\r\n") == 0 ? 2 : 1);
        return line;
    }

    void ReadFormat(std::string_view name)
    {
        if (name == "ascii")
            format_ = Format::Ascii;
        else if (name == "binary_little_endian")
            format_ = Format::LittleEndian;
        else if (name == "binary_big_endian")
            format_ = Format::BigEndian;
        else
            ThrowDamaged(path_, "unknown format");
    }

    void AddElement(TextScanner& words)
    {
        const ElementKind kind = ElementKindOf(words.Word());
        const auto count = ParseInteger(words.Word());
        if (!count || *count < 0)
            ThrowDamaged(path_, "an element without a count");
        elements_.push_back({kind, static_cast<std::size_t>(*count), {}});
    }

    void AddProperty(TextScanner& words)
    {
        if (elements_.empty())
            ThrowDamaged(path_, "a property without an element");
        Property property;
        std::string_view word = words.Word();
        const bool is_list = word == "list";
        if (is_list) {
            property.count_type = ScalarOf(words.Word());
            word = words.Word();
        }
        const auto type = ScalarOf(word);
        if (!type || (is_list && !property.count_type))
            ThrowDamaged(path_, "a property of an unknown type");
        property.type = *type;
        property.use = UseOf(words.Word(), is_list);
        elements_.back().properties.push_back(property);
    }

    double ReadNumber(Scalar type)
    {
        // A line of text that is too short lacks its last values.
        if (format_ == Format::Ascii)
            return ParseReal(scanner_.Word()).value_or(std::numeric_limits<double>::quiet_NaN());
        switch (type) {
        case Scalar::Int8:
            return static_cast<double>(ReadBinary<std::int8_t, std::uint8_t>());
        case Scalar::Uint8:
            return static_cast<double>(ReadBinary<std::uint8_t, std::uint8_t>());
        case Scalar::Int16:
            return static_cast<double>(ReadBinary<std::int16_t, std::uint16_t>());
        case Scalar::Uint16:
            return static_cast<double>(ReadBinary<std::uint16_t, std::uint16_t>());
        case Scalar::Int32:
            return static_cast<double>(ReadBinary<std::int32_t, std::uint32_t>());
        case Scalar::Uint32:
            return static_cast<double>(ReadBinary<std::uint32_t, std::uint32_t>());
        case Scalar::Float:
            return static_cast<double>(ReadBinary<float, std::uint32_t>());
        case Scalar::Double:
            return ReadBinary<double, std::uint64_t>();
        }
        return 0.0;
    }

    template <class Number, class Bits>
    Number ReadBinary()
    {
        if (text_.size() - position_ < sizeof(Bits))
            ThrowTooFewElements();
        Bits bits = 0;
        for (std::size_t i = 0; i < sizeof(Bits); ++i) {
            const std::size_t shift = format_ == Format::LittleEndian ? i : sizeof(Bits) - 1 - i;
            const auto byte = static_cast<Bits>(static_cast<unsigned char>(text_[position_ + i]));
            bits = static_cast<Bits>(bits | static_cast<Bits>(byte << (8 * shift)));
        }
        position_ += sizeof(Bits);
        return std::bit_cast<Number>(bits);
    }

    void ReadElement(const Element& element)
    {
        values_.scalars.fill(std::numeric_limits<double>::quiet_NaN());
        values_.indices.clear();
        values_.texture_points.clear();
        if (format_ == Format::Ascii && !scanner_.NextLine())
            ThrowTooFewElements();
        for (const Property& property : element.properties) {
            if (property.count_type) {
                ReadList(property, *property.count_type);
                continue;
            }
            double value = ReadNumber(property.type);
            if (property.use == Use::None)
                continue;
            const bool is_color = property.use >= Use::Red && property.use <= Use::Alpha;
            if (is_color && property.type != Scalar::Float && property.type != Scalar::Double)
                value /= property.type == Scalar::Uint16 ? 65535.0 : 255.0;
            values_.scalars.at(static_cast<std::size_t>(property.use)) = value;
        }
    }

    void ReadList(const Property& property, Scalar count_type)
    {
        const double count = ReadNumber(count_type);
        if (format_ == Format::Ascii && std::isnan(count))
            return;
        if (!(count >= 0.0) || count > static_cast<double>(text_.size()))
            ThrowDamaged(path_, "a list without a valid length");
        for (auto i = static_cast<std::size_t>(count); i > 0; --i) {
            if (format_ == Format::Ascii && !scanner_.HasWord())
                ThrowTooFewElements();
            const double value = ReadNumber(property.type);
            constexpr double kMaxIndex = 4294967295.0;
            if (property.use == Use::Indices)
                values_.indices.push_back(value >= -1.0 && value <= kMaxIndex ? static_cast<long long>(value)
                                                                              : kNoVertex);
            else if (property.use == Use::TexturePoints)
                values_.texture_points.push_back(value);
        }
    }

    std::optional<FileColor> ColorOfValues() const
    {
        const auto channel = [&](Use use) { return static_cast<float>(values_.At(use)); };
        FileColor color{channel(Use::Red), channel(Use::Green), channel(Use::Blue), channel(Use::Alpha)};
        if (std::isnan(color.alpha))
            color.alpha = 1.0F;
        return color.IsFinite() ? std::optional(color) : std::nullopt;
    }

    void Take(ElementKind kind)
    {
        if (kind == ElementKind::Vertex)
            TakeVertex();
        if (kind == ElementKind::Face)
            AddPart(values_.indices);
        if (kind == ElementKind::Edge)
            AddPart(std::array{ToIndex(values_.At(Use::Vertex1)), ToIndex(values_.At(Use::Vertex2))});
        if (kind == ElementKind::Strip)
            TakeStrips();
    }

    static long long ToIndex(double value)
    {
        constexpr double kMaxIndex = 4294967295.0;
        return value >= 0.0 && value <= kMaxIndex ? static_cast<long long>(value) : kNoVertex;
    }

    void TakeVertex()
    {
        const auto color = ColorOfValues();
        has_vertex_colors_ = has_vertex_colors_ || color;
        vertices_.push_back({{values_.At(Use::X), values_.At(Use::Y), values_.At(Use::Z)},
                             color.value_or(FileColor{}),
                             {values_.At(Use::U), values_.At(Use::V)}});
    }

    void AddPart(std::span<const long long> indices)
    {
        parts_.push_back({corners_.size(), indices.size(), ColorOfValues()});
        corners_.insert(corners_.end(), indices.begin(), indices.end());
        // Texture coordinates of the corners are alternately u and v.
        const std::vector<double>& points = values_.texture_points;
        if (texture_name_.empty() || indices.empty() || points.size() != 2 * indices.size())
            return;
        corner_points_.resize(corners_.size());
        for (std::size_t i = 0; i < indices.size(); ++i)
            corner_points_[parts_.back().first + i] = {points[2 * i], points[2 * i + 1]};
    }

    /// Each strip ends with -1. Every other triangle runs the other way round.
    void TakeStrips()
    {
        const std::vector<long long> strips = std::move(values_.indices);
        values_.indices = {};
        std::size_t first = 0;
        for (std::size_t i = 0; i < strips.size(); ++i) {
            if (strips[i] == -1) {
                first = i + 1;
            } else if (i >= first + 2) {
                std::array<long long, 3> corners = {strips[i - 2], strips[i - 1], strips[i]};
                if ((i - first) % 2 == 1)
                    std::swap(corners[0], corners[1]);
                AddPart(corners);
            }
        }
    }

    double FractionParsed() const
    {
        return format_ == Format::Ascii ? scanner_.Fraction()
                                        : static_cast<double>(position_) / static_cast<double>(text_.size());
    }

    void AddParts()
    {
        if (!texture_name_.empty())
            texture_ =
                textures_.At(texture_name_, [&] { return TextureStore::LoadFile(path_, texture_name_); });
        builder_.BeginMesh({}, parts_.size());
        for (std::size_t i = 0; i < parts_.size(); ++i) {
            AddPartToModel(parts_[i]);
            progress_.Built(i + 1, parts_.size());
        }
        if (parts_.empty())
            for (const Vertex& vertex : vertices_)
                builder_.AddPoint(vertex.point, has_vertex_colors_ ? vertex.color : FileColor{});
    }

    void AddPartToModel(const Part& part)
    {
        const std::span corners = std::span(corners_).subspan(part.first, part.count);
        const auto is_missing = [&](long long corner) {
            return corner < 0 || static_cast<std::size_t>(corner) >= vertices_.size();
        };
        if (std::ranges::any_of(corners, is_missing)) {
            builder_.LeaveOutDamaged();
            return;
        }
        std::vector<Point> polygon;
        polygon.reserve(corners.size());
        for (const long long corner : corners)
            polygon.push_back(VertexAt(corner).point);
        builder_.AddPart(std::move(polygon), ColorOf(part, corners));
    }

    const Vertex& VertexAt(long long index) const { return vertices_[static_cast<std::size_t>(index)]; }

    FileColor ColorOf(const Part& part, std::span<const long long> corners) const
    {
        if (part.color)
            return *part.color;
        if (texture_ != nullptr)
            return texture_->MeanNear(TexturePointsOf(part, corners));
        if (!has_vertex_colors_)
            return {};
        ColorMean mean;
        for (const long long corner : corners)
            mean.Add(VertexAt(corner).color);
        return mean.Mean();
    }

    std::vector<TexturePoint> TexturePointsOf(const Part& part, std::span<const long long> corners) const
    {
        if (part.first + part.count <= corner_points_.size())
            return {corner_points_.begin() + static_cast<std::ptrdiff_t>(part.first),
                    corner_points_.begin() + static_cast<std::ptrdiff_t>(part.first + part.count)};
        std::vector<TexturePoint> points;
        points.reserve(corners.size());
        for (const long long corner : corners)
            points.push_back(VertexAt(corner).texture_point);
        return points;
    }

    /// An index that no vertex has.
    static constexpr long long kNoVertex = -2;

    const std::string& path_;
    ImportProgress progress_;
    std::string text_;
    std::size_t position_ = 0; ///< in a binary file, and of the end of the header
    TextScanner scanner_;      ///< of the body of a file of text
    Format format_ = Format::Ascii;
    std::vector<Element> elements_;
    std::string texture_name_;
    Values values_; ///< of the current element
    std::vector<Vertex> vertices_;
    bool has_vertex_colors_ = false;
    std::vector<Part> parts_;
    std::vector<long long> corners_;          ///< of all parts
    std::vector<TexturePoint> corner_points_; ///< of the corners, where the file has them
    TextureStore textures_;
    const TextureImage* texture_ = nullptr;
    ModelBuilder builder_;
};

} // namespace

Model ReadPly(const std::string& path, const ProgressFunction& progress)
{
    return PlyReader(path, progress).Read();
}

} // namespace viewer
