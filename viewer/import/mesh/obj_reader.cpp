#include "viewer/import/mesh/obj_reader.h"

#include "viewer/import/companion_files.h"
#include "viewer/import/mesh/model_builder.h"
#include "viewer/import/mesh/text_scanner.h"
#include "viewer/import/mesh/texture_store.h"
#include "viewer/text/text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace viewer
{

namespace
{

/// The index of a vertex or a texture point that is missing or not valid.
constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();

struct Corner {
    std::uint32_t vertex = kNone;
    std::uint32_t texture = kNone;
};

enum class PartKind : unsigned char { Face, Line, Point };

/// A statement with corners.
struct Part {
    PartKind kind;
    std::uint32_t corner_count;
};

struct ObjMaterial {
    std::string name;
    FileColor color;          ///< with the opacity as alpha
    bool has_diffuse = false; ///< the colour is diffuse and not black
    std::string texture;
    int category = -1; ///< absent until `OrderMaterials`
};

/// The parts of one object, group and material.
struct ObjMesh {
    std::string object;
    std::string group;
    int material = 0;
    std::vector<Part> parts;
    std::vector<Corner> corners; ///< of all parts
};

std::optional<FileColor> ColorAt(TextScanner& scanner)
{
    std::array<float, 3> channels{};
    for (float& channel : channels) {
        const auto value = ParseReal(scanner.Word());
        if (!value)
            return std::nullopt;
        channel = static_cast<float>(*value);
    }
    const FileColor color{channels[0], channels[1], channels[2], 1.0F};
    return color.IsFinite() ? std::optional(color) : std::nullopt;
}

/// The name of the file at the end of a "map_Kd" statement, after its options.
std::string MapName(std::string_view rest)
{
    std::string_view name = rest;
    // Each option begins with a dash and has values that are numbers or "on" and "off".
    TextScanner words(rest);
    bool has_options = false;
    for (std::string_view word = words.Word(); !word.empty(); word = words.Word()) {
        const bool is_value = has_options && (ParseReal(word) || word == "on" || word == "off");
        if (word.starts_with('-') || is_value) {
            has_options = true;
            continue;
        }
        name = rest.substr(static_cast<std::size_t>(word.data() - rest.data()));
        break;
    }
    return std::string(name);
}

class ObjReader
{
  public:
    ObjReader(const std::string& path, const ProgressFunction& progress)
        : path_(path), progress_(progress, 0.5), text_(ReadWholeFile(path))
    {
    }

    Model Read()
    {
        ReadStatements();
        if (meshes_.empty())
            ShowVertices();
        ScaleColors();
        AddMeshes();
        builder_.LeaveOut("texture", textures_.Missing());
        return builder_.Finish(path_, category_names_);
    }

  private:
    void ReadStatements()
    {
        TextScanner scanner(text_, '#');
        while (scanner.NextLine()) {
            ReadStatement(scanner);
            progress_.Parsed(scanner.Fraction());
        }
    }

    void ReadStatement(TextScanner& scanner)
    {
        const std::string_view keyword = scanner.Word();
        if (keyword == "v")
            ReadVertex(scanner);
        else if (keyword == "vt")
            ReadTexturePoint(scanner);
        else if (keyword == "f" || keyword == "fo")
            ReadPart(scanner, PartKind::Face);
        else if (keyword == "l")
            ReadPart(scanner, PartKind::Line);
        else if (keyword == "p")
            ReadPart(scanner, PartKind::Point);
        else
            ReadState(scanner, keyword);
    }

    void ReadState(TextScanner& scanner, std::string_view keyword)
    {
        if (keyword == "o") {
            object_ = scanner.Rest();
            group_.clear();
        } else if (keyword == "g") {
            group_ = scanner.Rest();
        } else if (keyword == "usemtl") {
            material_ = MaterialNumber(std::string(scanner.Rest()));
        } else if (keyword == "mtllib") {
            ReadLibraries(scanner.Rest());
            return;
        } else if (keyword == "curv" || keyword == "surf") {
            builder_.LeaveOut(keyword);
            return;
        } else {
            return;
        }
        mesh_.reset();
    }

    void ReadVertex(TextScanner& scanner)
    {
        constexpr std::size_t kMaxNumbers = 8;
        std::array<double, kMaxNumbers> numbers{};
        std::size_t count = 0;
        for (std::string_view word = scanner.Word(); !word.empty() && count < kMaxNumbers;
             word = scanner.Word())
            numbers.at(count++) = ParseReal(word).value_or(std::numeric_limits<double>::quiet_NaN());
        constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();
        vertices_.push_back(count < 3 ? Point{kMissing, kMissing, kMissing}
                                      : Point{numbers[0], numbers[1], numbers[2]});
        // Colours follow three coordinates, or three and a weight.
        const std::size_t first = count >= 7 ? 4 : 3;
        if (count >= 6) {
            colors_.resize(vertices_.size(), FileColor{1.0F, 1.0F, 1.0F, 1.0F});
            colors_.back() = {static_cast<float>(numbers.at(first)),
                              static_cast<float>(numbers.at(first + 1)),
                              static_cast<float>(numbers.at(first + 2)), 1.0F};
        }
    }

    void ReadTexturePoint(TextScanner& scanner)
    {
        const double u = ParseReal(scanner.Word()).value_or(0.0);
        texture_points_.push_back({u, ParseReal(scanner.Word()).value_or(0.0)});
    }

    /// The index of a vertex, from 0; kNone for a number that is not valid. Negative numbers count back from
    /// the last vertex.
    static std::uint32_t Resolve(std::string_view word, std::size_t count)
    {
        const auto number = ParseInteger(word);
        if (!number || *number == 0)
            return kNone;
        const long long index = *number > 0 ? *number - 1 : static_cast<long long>(count) + *number;
        return index < 0 || index >= kNone ? kNone : static_cast<std::uint32_t>(index);
    }

    void ReadPart(TextScanner& scanner, PartKind kind)
    {
        ObjMesh& mesh = CurrentMesh();
        std::uint32_t count = 0;
        for (std::string_view word = scanner.Word(); !word.empty(); word = scanner.Word(), ++count) {
            const std::size_t slash = word.find('/');
            Corner corner{Resolve(word.substr(0, slash), vertices_.size()), kNone};
            if (slash != std::string_view::npos) {
                const std::string_view rest = word.substr(slash + 1);
                corner.texture = Resolve(rest.substr(0, rest.find('/')), texture_points_.size());
            }
            mesh.corners.push_back(corner);
        }
        mesh.parts.push_back({kind, count});
    }

    ObjMesh& CurrentMesh()
    {
        if (!mesh_) {
            const auto [found, is_new] =
                mesh_numbers_.try_emplace({object_, group_, material_}, meshes_.size());
            if (is_new)
                meshes_.push_back({object_, group_, material_, {}, {}});
            mesh_ = found->second;
        }
        return meshes_[*mesh_];
    }

    int MaterialNumber(const std::string& name)
    {
        const auto [found, is_new] = material_numbers_.try_emplace(name, static_cast<int>(materials_.size()));
        if (is_new)
            materials_.emplace_back().name = name;
        return found->second;
    }

    /// Reads the files of a "mtllib" statement: one whose name may have blanks, or several.
    void ReadLibraries(std::string_view names)
    {
        if (const auto whole = FindCompanion(path_, std::string(names))) {
            ReadLibrary(*whole);
            return;
        }
        TextScanner words(names);
        for (std::string_view name = words.Word(); !name.empty(); name = words.Word())
            if (const auto file = FindCompanion(path_, std::string(name)))
                ReadLibrary(*file);
            else
                builder_.LeaveOut("material library");
    }

    void ReadLibrary(const std::string& file)
    {
        // A file may name its library again for each object.
        if (std::ranges::find(libraries_, file) != libraries_.end())
            return;
        libraries_.push_back(file);
        const std::string text = ReadWholeFile(file);
        TextScanner scanner(text, '#');
        ObjMaterial ignored;
        ObjMaterial* material = &ignored;
        while (scanner.NextLine()) {
            const std::string_view keyword = scanner.Word();
            if (keyword == "newmtl") {
                const int number = MaterialNumber(std::string(scanner.Rest()));
                material = &materials_[static_cast<std::size_t>(number)];
                order_.push_back(number);
            } else {
                ReadMaterialStatement(*material, scanner, keyword);
            }
        }
    }

    static void ReadMaterialStatement(ObjMaterial& material, TextScanner& scanner, std::string_view keyword)
    {
        const auto with_opacity = [&](const FileColor& color) {
            return FileColor{color.red, color.green, color.blue, material.color.alpha};
        };
        if (keyword == "Kd" || keyword == "Ke") {
            const auto color = ColorAt(scanner);
            const bool is_black = !color || color->red + color->green + color->blue <= 0.0F;
            // The emitted light is the colour of a material without a diffuse one.
            if (color && (keyword == "Kd" || (!is_black && !material.has_diffuse)))
                material.color = with_opacity(*color);
            material.has_diffuse = material.has_diffuse || (keyword == "Kd" && !is_black);
        } else if (keyword == "d" || keyword == "Tr") {
            std::string_view word = scanner.Word();
            if (word == "-halo")
                word = scanner.Word();
            const auto value = static_cast<float>(ParseReal(word).value_or(keyword == "d" ? 1.0 : 0.0));
            material.color.alpha = std::clamp(keyword == "d" ? value : 1.0F - value, 0.0F, 1.0F);
        } else if (keyword == "map_Kd") {
            material.texture = MapName(scanner.Rest());
        }
    }

    void ShowVertices()
    {
        ObjMesh& mesh = CurrentMesh();
        for (std::size_t i = 0; i < vertices_.size(); ++i) {
            mesh.corners.push_back({static_cast<std::uint32_t>(i), kNone});
            mesh.parts.push_back({PartKind::Point, 1});
        }
    }

    /// Colours of vertices run from 0 to 1, but some programs write them up to 255.
    void ScaleColors()
    {
        if (colors_.empty())
            return;
        colors_.resize(vertices_.size(), FileColor{1.0F, 1.0F, 1.0F, 1.0F});
        const bool is_bytes = std::ranges::any_of(colors_, [](const FileColor& color) {
            return color.red > 1.0F || color.green > 1.0F || color.blue > 1.0F;
        });
        constexpr float kByte = 1.0F / 255.0F;
        if (is_bytes)
            for (FileColor& color : colors_)
                color = color * FileColor{kByte, kByte, kByte, 1.0F};
        // Programs write white where nothing was painted.
        const FileColor first = colors_.front();
        const bool is_white = first == FileColor{1.0F, 1.0F, 1.0F, 1.0F};
        if (is_white && std::ranges::all_of(colors_, [&](const FileColor& c) { return c == first; }))
            colors_.clear();
    }

    /// Numbers the categories: the materials of the libraries first, then those that no library defines.
    void OrderMaterials()
    {
        for (std::size_t i = 0; i < materials_.size(); ++i)
            order_.push_back(static_cast<int>(i));
        for (const int number : order_) {
            ObjMaterial& material = materials_[static_cast<std::size_t>(number)];
            if (material.category >= 0)
                continue;
            material.category = static_cast<int>(category_names_.size());
            category_names_.push_back(material.name);
        }
    }

    void AddMeshes()
    {
        OrderMaterials();
        for (const ObjMesh& mesh : meshes_)
            parts_total_ += mesh.parts.size();
        for (const ObjMesh& mesh : meshes_) {
            Piece pattern;
            pattern.name = mesh.group.empty() ? mesh.object : mesh.group;
            if (!mesh.group.empty() && !mesh.object.empty() && mesh.group != mesh.object)
                pattern.parents = {mesh.object};
            const ObjMaterial& material = materials_[static_cast<std::size_t>(mesh.material)];
            pattern.category = material.category;
            pattern.alpha = material.color.alpha;
            builder_.BeginMesh(std::move(pattern), mesh.parts.size());
            AddParts(mesh, material);
        }
    }

    void AddParts(const ObjMesh& mesh, const ObjMaterial& material)
    {
        const TextureImage* texture = nullptr;
        if (!material.texture.empty())
            texture = textures_.At(material.texture,
                                   [&] { return TextureStore::LoadFile(path_, material.texture); });
        std::size_t first = 0;
        for (const Part& part : mesh.parts) {
            const std::span corners = std::span(mesh.corners).subspan(first, part.corner_count);
            first += part.corner_count;
            if (std::ranges::any_of(corners, [&](const Corner& c) { return c.vertex >= vertices_.size(); }))
                builder_.LeaveOutDamaged();
            else
                AddPart(part.kind, corners, ColorOf(corners, material, texture));
            progress_.Built(++parts_done_, parts_total_);
        }
    }

    FileColor ColorOf(std::span<const Corner> corners, const ObjMaterial& material,
                      const TextureImage* texture) const
    {
        FileColor base = material.color;
        base.alpha = 1.0F;
        const bool has_places = std::ranges::all_of(
            corners, [&](const Corner& corner) { return corner.texture < texture_points_.size(); });
        if (texture != nullptr && has_places) {
            std::vector<TexturePoint> points;
            points.reserve(corners.size());
            for (const Corner& corner : corners)
                points.push_back(texture_points_[corner.texture]);
            // A black factor would hide the texture. Programs write it where no factor is meant.
            const FileColor factor = material.has_diffuse ? base : FileColor{1.0F, 1.0F, 1.0F, 1.0F};
            return factor * texture->MeanNear(points);
        }
        if (colors_.empty())
            return base;
        ColorMean mean;
        for (const Corner& corner : corners)
            mean.Add(colors_[corner.vertex]);
        return mean.Mean();
    }

    void AddPart(PartKind kind, std::span<const Corner> corners, const FileColor& color)
    {
        std::vector<Point> points;
        points.reserve(corners.size());
        for (const Corner& corner : corners)
            points.push_back(vertices_[corner.vertex]);
        if (kind == PartKind::Point)
            for (const Point& point : points)
                builder_.AddPoint(point, color);
        else if (kind == PartKind::Line && points.size() > 1)
            for (std::size_t i = 0; i + 1 < points.size(); ++i)
                builder_.AddLine(points[i], points[i + 1], color);
        else
            builder_.AddPart(std::move(points), color);
    }

    const std::string& path_;
    ImportProgress progress_;
    std::string text_;
    std::vector<Point> vertices_;
    std::vector<FileColor> colors_; ///< of vertices, empty if the file has none
    std::vector<TexturePoint> texture_points_;
    std::vector<ObjMaterial> materials_{ObjMaterial{}}; ///< the first one is that of parts without a material
    std::map<std::string, int> material_numbers_{{"", 0}};
    std::vector<int> order_; ///< numbers of the materials in the order of the libraries, some repeated
    std::vector<std::string> category_names_;
    std::vector<std::string> libraries_;
    std::vector<ObjMesh> meshes_;
    std::map<std::tuple<std::string, std::string, int>, std::size_t> mesh_numbers_;
    std::string object_;
    std::string group_;
    int material_ = 0;
    std::optional<std::size_t> mesh_; ///< the number of the current one, if it is known
    TextureStore textures_;
    ModelBuilder builder_;
    std::size_t parts_total_ = 0;
    std::size_t parts_done_ = 0;
};

} // namespace

Model ReadObj(const std::string& path, const ProgressFunction& progress)
{
    return ObjReader(path, progress).Read();
}

} // namespace viewer
