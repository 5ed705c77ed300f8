#include "viewer/import/mesh/three_mf_reader.h"

#include "viewer/import/damaged_file.h"
#include "viewer/import/mesh/model_builder.h"
#include "viewer/import/mesh/text_scanner.h"
#include "viewer/import/mesh/texture_store.h"
#include "viewer/import/mesh/xml_reader.h"
#include "viewer/import/mesh/zip_archive.h"
#include "viewer/scene/affine.h"
#include "viewer/text/file_error.h"
#include "viewer/text/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace viewer
{

namespace
{

constexpr long long kNoId = -1;

struct Triangle {
    std::array<std::uint32_t, 3> corners;
    long long properties; ///< the number of a resource, or kNoId
    std::array<long long, 3> indices;
};

struct Beam {
    std::uint32_t from;
    std::uint32_t to;
};

struct Component {
    std::string part; ///< of the package; empty for that of the object
    long long object = kNoId;
    Affine transform;
};

struct Object {
    std::string name;
    long long properties = kNoId;
    long long index = 0;
    std::vector<Point> vertices;
    std::vector<Triangle> triangles;
    std::vector<Beam> beams;
    std::vector<Component> components;
};

/// A resource of colours.
struct Properties {
    std::vector<FileColor> colors;
    std::vector<std::string> materials; ///< names, of base materials only
    long long texture = kNoId;
    std::vector<TexturePoint> points; ///< in the texture
};

/// A model part of a package.
struct ModelPart {
    std::map<long long, Object> objects;
    std::map<long long, Properties> properties;
    std::map<long long, std::string> textures; ///< paths in the package
    std::vector<Component> items;              ///< the "build" list
};

std::uint32_t VertexAt(const XmlAttributes& attributes, std::string_view name)
{
    constexpr long long kNone = std::numeric_limits<std::uint32_t>::max();
    const long long index = attributes.IntegerAt(name, kNone);
    return static_cast<std::uint32_t>(index < 0 || index > kNone ? kNone : index);
}

/// "#RRGGBB" or "#RRGGBBAA".
FileColor ColorAt(const XmlAttributes& attributes, std::string_view name)
{
    const std::string_view text = attributes.At(name);
    std::array<float, 4> channels = {0.6F, 0.6F, 0.6F, 1.0F};
    for (std::size_t i = 0; i < channels.size() && text.size() >= 3 + 2 * i; ++i) {
        unsigned int byte = 0;
        const char* digits = text.data() + 1 + 2 * i;
        if (std::from_chars(digits, digits + 2, byte, 16).ec == std::errc())
            channels.at(i) = static_cast<float>(byte) / 255.0F;
    }
    return {channels[0], channels[1], channels[2], channels[3]};
}

/// Twelve numbers: the images of the axes and of the origin.
Affine TransformAt(const XmlAttributes& attributes)
{
    TextScanner words(attributes.At("transform"));
    std::array<double, 12> m{};
    for (double& value : m) {
        const auto number = ParseReal(words.WordOfText());
        if (!number)
            return {};
        value = *number;
    }
    return {{m[0], m[1], m[2]}, {m[3], m[4], m[5]}, {m[6], m[7], m[8]}, {m[9], m[10], m[11]}};
}

std::optional<double> MetersPer(std::string_view unit)
{
    constexpr std::array<std::pair<std::string_view, double>, 6> kUnits = {{{"micron", 1e-6},
                                                                            {"millimeter", 1e-3},
                                                                            {"centimeter", 1e-2},
                                                                            {"inch", 0.0254},
                                                                            {"foot", 0.3048},
                                                                            {"meter", 1.0}}};
    const auto* const found = std::ranges::find(kUnits, unit, &std::pair<std::string_view, double>::first);
    // Millimetres are the default of the format.
    return found == kUnits.end() ? 1e-3 : found->second;
}

class ThreeMfReader
{
  public:
    ThreeMfReader(const std::string& path, const ProgressFunction& progress)
        : path_(path), progress_(progress, 0.7), archive_(path)
    {
    }

    Model Read()
    {
        const std::string root = RootPart();
        const ModelPart& part = PartAt(root);
        std::vector<Component> items = part.items;
        if (items.empty())
            for (const auto& [id, object] : part.objects)
                items.push_back({{}, id, {}});
        for (std::size_t i = 0; i < items.size(); ++i) {
            AddObject(root, items[i], {}, {}, 0);
            progress_.Built(i + 1, items.size());
        }
        builder_.LeaveOut("texture", textures_.Missing());
        Model model = builder_.Finish(path_, material_names_);
        model.meters_per_unit = meters_per_unit_;
        return model;
    }

  private:
    /// Components may refer to each other in circles. The number of uses may double with each level.
    static constexpr int kMaxDepth = 32;
    static constexpr std::size_t kMaxUses = 100'000;

    /// Reads a file of the package as XML. Returns false if it does not exist.
    bool ReadXml(const std::string& name, const XmlReader::StartFunction& on_start,
                 const XmlReader::EndFunction& on_end)
    {
        XmlReader reader(on_start, on_end);
        const auto feed = [&](std::span<const char> block, bool is_last) {
            if (!reader.Feed(block, is_last))
                ThrowDamaged(path_, "'" + name + "' is not well-formed");
        };
        if (!archive_.Read(name, [&](std::span<const char> block) { feed(block, false); }))
            return false;
        feed({}, true);
        return true;
    }

    /// The name of the part that the package declares as its model.
    std::string RootPart()
    {
        std::string root = "3D/3dmodel.model";
        ReadXml(
            "_rels/.rels",
            [&](std::string_view name, const XmlAttributes& attributes) {
                if (name == "Relationship" && attributes.At("Type").ends_with("/3dmodel"))
                    root = attributes.At("Target");
            },
            [](std::string_view) {});
        return root;
    }

    ModelPart& PartAt(const std::string& name)
    {
        const auto [found, is_new] = parts_.try_emplace(name);
        if (!is_new)
            return found->second;
        part_ = &found->second;
        object_ = nullptr;
        properties_ = nullptr;
        const bool is_there = ReadXml(
            name,
            [&](std::string_view element, const XmlAttributes& attributes) { OnStart(element, attributes); },
            [&](std::string_view element) {
                if (element == "object")
                    object_ = nullptr;
                if (element == "basematerials" || element == "colorgroup" || element == "texture2dgroup")
                    properties_ = nullptr;
            });
        if (!is_there && parts_.size() == 1)
            ThrowDamaged(path_, "it holds no model");
        return found->second;
    }

    void OnStart(std::string_view name, const XmlAttributes& attributes)
    {
        if (name == "object")
            BeginObject(attributes);
        else if (object_ != nullptr)
            OnObjectElement(name, attributes);
        else if (properties_ != nullptr)
            OnPropertyElement(name, attributes);
        else
            OnResource(name, attributes);
    }

    void BeginObject(const XmlAttributes& attributes)
    {
        object_ = &part_->objects[attributes.IntegerAt("id", kNoId)];
        object_->name = attributes.At("name");
        object_->properties = attributes.IntegerAt("pid", kNoId);
        object_->index = attributes.IntegerAt("pindex", 0);
    }

    void OnObjectElement(std::string_view name, const XmlAttributes& attributes)
    {
        if (name == "vertex") {
            object_->vertices.push_back(
                {attributes.NumberAt("x"), attributes.NumberAt("y"), attributes.NumberAt("z")});
        } else if (name == "triangle") {
            const long long first = attributes.IntegerAt("p1", kNoId);
            // The resource of the object applies to a triangle without an index.
            const long long properties =
                first == kNoId ? kNoId : attributes.IntegerAt("pid", object_->properties);
            object_->triangles.push_back(
                {{VertexAt(attributes, "v1"), VertexAt(attributes, "v2"), VertexAt(attributes, "v3")},
                 properties,
                 {first, attributes.IntegerAt("p2", first), attributes.IntegerAt("p3", first)}});
        } else if (name == "component") {
            object_->components.push_back(ComponentOf(attributes));
        } else if (name == "beam") {
            object_->beams.push_back({VertexAt(attributes, "v1"), VertexAt(attributes, "v2")});
        }
    }

    void OnPropertyElement(std::string_view name, const XmlAttributes& attributes)
    {
        if (name == "base") {
            properties_->colors.push_back(ColorAt(attributes, "displaycolor"));
            properties_->materials.emplace_back(attributes.At("name"));
        } else if (name == "color") {
            properties_->colors.push_back(ColorAt(attributes, "color"));
        } else if (name == "tex2coord") {
            properties_->points.push_back({attributes.NumberAt("u"), attributes.NumberAt("v")});
        }
    }

    void OnResource(std::string_view name, const XmlAttributes& attributes)
    {
        const long long id = attributes.IntegerAt("id", kNoId);
        if (name == "basematerials" || name == "colorgroup" || name == "texture2dgroup") {
            properties_ = &part_->properties[id];
            properties_->texture = attributes.IntegerAt("texid", kNoId);
        } else if (name == "texture2d") {
            part_->textures[id] = attributes.At("path");
        } else if (name == "item") {
            part_->items.push_back(ComponentOf(attributes));
        } else if (name == "model" && parts_.size() == 1) {
            meters_per_unit_ = MetersPer(attributes.At("unit"));
        } else if (name == "compositematerials" || name == "multiproperties" || name == "slicestack") {
            builder_.LeaveOut(name);
        }
    }

    static Component ComponentOf(const XmlAttributes& attributes)
    {
        return {std::string(attributes.At("path")), attributes.IntegerAt("objectid", kNoId),
                TransformAt(attributes)};
    }

    void AddObject(const std::string& user, const Component& use, const Affine& parent,
                   std::vector<std::string> parents, int depth)
    {
        const std::string& name = use.part.empty() ? user : use.part;
        const ModelPart& part = PartAt(name);
        const auto found = part.objects.find(use.object);
        if (found == part.objects.end()) {
            builder_.LeaveOut("object that is missing");
            return;
        }
        if (depth >= kMaxDepth || ++uses_ > kMaxUses) {
            builder_.LeaveOut("component");
            return;
        }
        const Object& object = found->second;
        const Affine transform = parent * use.transform;
        AddMeshes(part, object, transform, parents);
        if (!object.name.empty())
            parents.push_back(object.name);
        for (const Component& component : object.components)
            AddObject(name, component, transform, parents, depth + 1);
    }

    void AddMeshes(const ModelPart& part, const Object& object, const Affine& transform,
                   const std::vector<std::string>& parents)
    {
        std::vector<Point> points;
        points.reserve(object.vertices.size());
        for (const Point& vertex : object.vertices)
            points.push_back(transform.Apply(vertex));
        std::map<int, std::vector<const Triangle*>> triangles;
        for (const Triangle& triangle : object.triangles)
            triangles[CategoryOf(part, object, triangle)].push_back(&triangle);
        if (!object.beams.empty())
            triangles.try_emplace(0);
        Piece pattern;
        pattern.name = object.name;
        pattern.parents = parents;
        bool has_beams = !object.beams.empty();
        for (const auto& [category, of_category] : triangles) {
            pattern.category = category;
            builder_.BeginMesh(pattern, of_category.size());
            for (const Triangle* triangle : of_category)
                AddTriangle(part, object, points, *triangle, transform.Mirrors());
            if (std::exchange(has_beams, false))
                AddBeams(object, points);
        }
    }

    void AddTriangle(const ModelPart& part, const Object& object, const std::vector<Point>& points,
                     const Triangle& triangle, bool mirrors)
    {
        const auto& [a, b, c] = triangle.corners;
        if (std::max({a, b, c}) >= points.size()) {
            builder_.LeaveOutDamaged();
            return;
        }
        std::vector<Point> corners = {points[a], points[b], points[c]};
        if (mirrors)
            std::swap(corners[0], corners[1]);
        builder_.AddFace(std::move(corners), ColorOf(part, object, triangle));
    }

    void AddBeams(const Object& object, const std::vector<Point>& points)
    {
        for (const auto& [from, to] : object.beams)
            if (std::max(from, to) >= points.size())
                builder_.LeaveOutDamaged();
            else
                builder_.AddLine(points[from], points[to], {});
    }

    /// The resource of a triangle and the index into it at each corner. The resource is null if it is
    /// missing.
    static std::pair<const Properties*, std::array<long long, 3>>
    PropertiesOf(const ModelPart& part, const Object& object, const Triangle& triangle)
    {
        const bool has_own = triangle.properties != kNoId;
        const auto found = part.properties.find(has_own ? triangle.properties : object.properties);
        const std::array<long long, 3> of_object = {object.index, object.index, object.index};
        return {found == part.properties.end() ? nullptr : &found->second,
                has_own ? triangle.indices : of_object};
    }

    /// The category of the base material of a triangle, from 1; 0 without a base material.
    int CategoryOf(const ModelPart& part, const Object& object, const Triangle& triangle)
    {
        const auto [properties, indices] = PropertiesOf(part, object, triangle);
        if (properties == nullptr || indices[0] < 0 ||
            static_cast<std::size_t>(indices[0]) >= properties->materials.size())
            return 0;
        const std::string& name = properties->materials[static_cast<std::size_t>(indices[0])];
        const auto [found, is_new] = materials_.try_emplace({properties, indices[0]}, 0);
        if (is_new) {
            material_names_.push_back(name);
            found->second = static_cast<int>(material_names_.size()) - 1;
        }
        return found->second;
    }

    FileColor ColorOf(const ModelPart& part, const Object& object, const Triangle& triangle)
    {
        const auto [properties, indices] = PropertiesOf(part, object, triangle);
        if (properties == nullptr)
            return {};
        if (properties->texture != kNoId)
            return ColorOfTexture(part, *properties, indices);
        ColorMean mean;
        for (const long long index : indices)
            if (index >= 0 && static_cast<std::size_t>(index) < properties->colors.size())
                mean.Add(properties->colors[static_cast<std::size_t>(index)]);
        return mean.Mean();
    }

    FileColor ColorOfTexture(const ModelPart& part, const Properties& properties,
                             const std::array<long long, 3>& indices)
    {
        const auto file = part.textures.find(properties.texture);
        if (file == part.textures.end())
            return {};
        const TextureImage* texture = textures_.At(file->second, [&] { return LoadTexture(file->second); });
        if (texture == nullptr)
            return {};
        std::vector<TexturePoint> points;
        for (const long long index : indices)
            if (index >= 0 && static_cast<std::size_t>(index) < properties.points.size())
                points.push_back(properties.points[static_cast<std::size_t>(index)]);
        return texture->MeanNear(points);
    }

    std::optional<TextureImage> LoadTexture(const std::string& name) const
    {
        std::vector<unsigned char> bytes;
        const auto append = [&](std::span<const char> block) {
            bytes.insert(bytes.end(), block.begin(), block.end());
        };
        try {
            return archive_.Read(name, append) ? TextureImage::FromBytes(bytes) : std::nullopt;
        } catch (const FileError&) {
            return std::nullopt; // a damaged texture is like a missing one
        }
    }

    const std::string& path_;
    ImportProgress progress_;
    ZipArchive archive_;
    std::map<std::string, ModelPart> parts_;
    // The elements that are being read.
    ModelPart* part_ = nullptr;
    Object* object_ = nullptr;
    Properties* properties_ = nullptr;
    std::optional<double> meters_per_unit_;
    std::map<std::pair<const Properties*, long long>, int> materials_;
    std::vector<std::string> material_names_{""}; ///< by category; 0 is for triangles without a material
    TextureStore textures_;
    std::size_t uses_ = 0;
    ModelBuilder builder_;
};

} // namespace

Model ReadThreeMf(const std::string& path, const ProgressFunction& progress)
{
    return ThreeMfReader(path, progress).Read();
}

} // namespace viewer
