#include "viewer/apps/win32-dialog/obj_file.h"

#include "platform/host/cm/color.h"
#include "platform/tools/utf8.h"
#include "viewer/scene/face_filling.h"
#include "viewer/scene/surface_sides.h"
#include "viewer/text/file_error.h"

#define TINYOBJLOADER_IMPLEMENTATION
#include <tiny_obj_loader.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <fstream>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace win32_dialog
{

namespace
{

using viewer::FileError;
using viewer::Piece;
using viewer::Point;

/// Opens material files by their wide names, which the library's own reader cannot do.
class MaterialFiles : public tinyobj::MaterialReader
{
  public:
    explicit MaterialFiles(std::filesystem::path folder) : folder_(std::move(folder)) {}

    bool operator()(const std::string& name, std::vector<tinyobj::material_t>* materials,
                    std::map<std::string, int>* numbers, std::string* warning, std::string* error) override
    {
        std::ifstream in(folder_ / WideFromUtf8(name), std::ios::binary);
        if (!in)
            return false;
        tinyobj::LoadMtl(numbers, materials, &in, warning, error);
        return true;
    }

  private:
    std::filesystem::path folder_;
};

Adesk::UInt8 ToByte(double channel)
{
    // NaN becomes 0, too.
    return channel > 0.0 ? static_cast<Adesk::UInt8>(std::lround(std::min(channel, 1.0) * 255.0))
                         : Adesk::UInt8{0};
}

float ToOpacity(double dissolve)
{
    return dissolve >= 0.0 ? static_cast<float>(std::min(dissolve, 1.0)) : 1.0F;
}

/// Converts the records of the library to a model.
class Conversion
{
  public:
    explicit Conversion(const std::filesystem::path& file) : name_(Utf8FromWide(file.wstring()))
    {
        Load(file);
    }

    viewer::Model ToModel()
    {
        for (const tinyobj::shape_t& shape : shapes_) {
            AddFaces(shape);
            AddLines(shape);
        }
        model_.PutTranslucentLast();
        return std::move(model_);
    }

  private:
    void Load(const std::filesystem::path& file)
    {
        std::ifstream in(file, std::ios::binary);
        if (!in)
            throw FileError(name_, "cannot be opened");
        MaterialFiles materials(file.parent_path());
        std::string warning;
        std::string error;
        constexpr bool kTriangulate = false;
        if (!tinyobj::LoadObj(&vertices_, &shapes_, &materials_, &warning, &error, &in, &materials,
                              kTriangulate))
            throw FileError(name_, error.substr(0, error.find('\n')));
        if (in.bad())
            throw FileError(name_, "cannot be read");
        model_.title = Utf8FromWide(file.stem().wstring());
    }

    [[nodiscard]] Point At(const tinyobj::index_t& index) const
    {
        const std::size_t count = vertices_.vertices.size() / 3;
        const auto number = static_cast<std::size_t>(index.vertex_index);
        if (index.vertex_index < 0 || number >= count)
            throw FileError(name_, "names a vertex that it does not have; it has " + std::to_string(count));
        const double* const from = &vertices_.vertices[3 * number];
        const Point point{from[0], from[1], from[2]};
        if (!viewer::IsFinite(point))
            throw FileError(name_, "vertex " + std::to_string(number + 1) + " is no point");
        return point;
    }

    [[nodiscard]] std::vector<Point> Points(std::span<const tinyobj::index_t> indices) const
    {
        std::vector<Point> points;
        for (const tinyobj::index_t& index : indices)
            points.push_back(At(index));
        return points;
    }

    void AddFaces(const tinyobj::shape_t& shape)
    {
        const tinyobj::mesh_t& mesh = shape.mesh;
        std::map<int, Piece> by_material;
        std::span<const tinyobj::index_t> left(mesh.indices);
        for (std::size_t face = 0; face < mesh.num_face_vertices.size(); ++face) {
            const std::size_t corners = mesh.num_face_vertices[face];
            // NOTE: The library counts the corners of a polygon in a byte, which wraps around.
            if (corners < 3 || corners > left.size())
                throw FileError(name_, "has a polygon of more than 255 corners");
            if (auto polygon = viewer::MakeFace(Points(left.first(corners))))
                by_material[mesh.material_ids[face]].faces.push_back(std::move(*polygon));
            left = left.subspan(corners);
        }
        if (!left.empty())
            throw FileError(name_, "has a polygon of more than 255 corners");
        for (auto& [material, piece] : by_material) {
            GiveMaterial(piece, material);
            Add(shape, std::move(piece));
        }
    }

    void AddLines(const tinyobj::shape_t& shape)
    {
        Piece piece;
        std::span<const tinyobj::index_t> left(shape.lines.indices);
        for (const int count : shape.lines.num_line_vertices) {
            const std::vector<Point> points = Points(left.first(static_cast<std::size_t>(count)));
            for (std::size_t i = 1; i < points.size(); ++i)
                piece.lines.push_back({points[i - 1], points[i]});
            left = left.subspan(points.size());
        }
        if (piece.lines.empty())
            return;
        piece.category = CategoryNamed("lines");
        Add(shape, std::move(piece));
    }

    void Add(const tinyobj::shape_t& shape, Piece piece)
    {
        piece.name = shape.name;
        model_.pieces.push_back(std::move(piece));
    }

    void GiveMaterial(Piece& piece, int number)
    {
        constexpr unsigned char kMiddleGray = 253; ///< leaves room for lighter and darker sides
        piece.color = kMiddleGray;
        if (number < 0) {
            piece.category = CategoryNamed("no material");
            return;
        }
        const tinyobj::material_t& material = materials_[static_cast<std::size_t>(number)];
        piece.color = NearestColorIndex(ToByte(material.diffuse[0]), ToByte(material.diffuse[1]),
                                        ToByte(material.diffuse[2]));
        piece.alpha = ToOpacity(material.dissolve);
        piece.category = CategoryNamed(material.name);
    }

    /// The number of the category with this name; a new name gets the next number.
    int CategoryNamed(const std::string& name)
    {
        std::vector<std::string>& names = model_.category_names;
        const auto known = std::find(names.begin(), names.end(), name);
        const auto number = static_cast<int>(known - names.begin());
        if (known == names.end())
            names.push_back(name);
        return number;
    }

    std::string name_;
    tinyobj::attrib_t vertices_;
    std::vector<tinyobj::shape_t> shapes_;
    std::vector<tinyobj::material_t> materials_;
    viewer::Model model_;
};

} // namespace

viewer::Model ReadObjFile(const std::filesystem::path& file)
{
    Conversion conversion(file);
    viewer::Model model = conversion.ToModel();
    viewer::FillFaces(model);
    viewer::SettleSides(model);
    const viewer::Box extents = model.Extents();
    if (extents.IsEmpty() || !(extents.Diagonal() > 0.0))
        throw FileError(Utf8FromWide(file.wstring()), "has no faces and no lines");
    return model;
}

} // namespace win32_dialog
