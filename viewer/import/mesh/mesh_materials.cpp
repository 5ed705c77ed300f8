#include "viewer/import/mesh/mesh_materials.h"

#include "viewer/text/text.h"

#include <assimp/GltfMaterial.h>
#include <assimp/material.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

namespace viewer
{

namespace
{

bool IsGltf(const std::string& path)
{
    const std::string ending = LowerCaseExtension(path);
    return ending == ".gltf" || ending == ".glb" || ending == ".vrm";
}

FileColor ToColor(const aiColor4D& color)
{
    return {color.r, color.g, color.b, color.a};
}

FileColor Opaque(FileColor color)
{
    color.alpha = 1.0F;
    return color;
}

bool IsBlack(const FileColor& color)
{
    return color.red <= 0.0F && color.green <= 0.0F && color.blue <= 0.0F;
}

/// Whether the library made the material for a file that has none.
///
/// NOTE: For some kinds of files, such as STL, that material is white.
bool IsMadeUp(const aiMaterial& material, const FileColor& color)
{
    aiString name;
    return material.Get(AI_MATKEY_NAME, name) == AI_SUCCESS &&
           std::string_view(name.C_Str()) == AI_DEFAULT_MATERIAL_NAME && color == FileColor{1.0F, 1.0F, 1.0F};
}

/// The diffuse or base colour. The emissive one if the material only emits.
FileColor BaseColorOf(const aiMaterial& material)
{
    aiColor4D color;
    const bool is_known = material.Get(AI_MATKEY_BASE_COLOR, color) == AI_SUCCESS ||
                          material.Get(AI_MATKEY_COLOR_DIFFUSE, color) == AI_SUCCESS;
    FileColor base = is_known ? Opaque(ToColor(color)) : FileColor{};
    if (!base.IsFinite() || IsMadeUp(material, base))
        base = {};
    if (is_known && !IsBlack(base))
        return base;
    aiColor4D emitted;
    if (material.Get(AI_MATKEY_COLOR_EMISSIVE, emitted) != AI_SUCCESS)
        return base;
    const FileColor light = Opaque(ToColor(emitted));
    return light.IsFinite() && !IsBlack(light) ? light : base;
}

float OpacityOf(const aiMaterial& material)
{
    // glTF states whether the opacity applies.
    aiString mode;
    if (material.Get(AI_MATKEY_GLTF_ALPHAMODE, mode) == AI_SUCCESS &&
        std::string_view(mode.C_Str()) != "BLEND")
        return 1.0F;
    float alpha = 1.0F;
    if (material.Get(AI_MATKEY_OPACITY, alpha) != AI_SUCCESS || !std::isfinite(alpha))
        return 1.0F;
    return std::clamp(alpha, 0.0F, 1.0F);
}

/// The texture that gives a material its colour.
struct TextureUse {
    aiTextureType type;
    aiString name;
};

std::optional<TextureUse> TextureOf(const aiMaterial& material)
{
    for (const aiTextureType type : {aiTextureType_BASE_COLOR, aiTextureType_DIFFUSE, aiTextureType_EMISSIVE,
                                     aiTextureType_EMISSION_COLOR}) {
        TextureUse use{type, {}};
        if (material.GetTexture(type, 0, &use.name) == aiReturn_SUCCESS && use.name.length > 0)
            return use;
    }
    return std::nullopt;
}

std::optional<TextureImage> FromEmbedded(const aiTexture& texture)
{
    // NOTE: A height of 0 marks the bytes of an image file; the width is their number.
    if (texture.mHeight == 0)
        return TextureImage::FromBytes(
            {reinterpret_cast<const unsigned char*>(texture.pcData), texture.mWidth});
    const std::size_t width = texture.mWidth;
    return TextureImage::FromPixels(width, texture.mHeight, [&](std::size_t x, std::size_t y) {
        return ToColor(aiColor4D(texture.pcData[y * width + x]));
    });
}

TexturePoint Transformed(const aiVector3D& point, const aiUVTransform& transform)
{
    // About the middle of the image, as the library defines it: scaling, rotation, translation.
    const auto angle = static_cast<double>(transform.mRotation);
    const double u = (static_cast<double>(point.x) - 0.5) * static_cast<double>(transform.mScaling.x);
    const double v = (static_cast<double>(point.y) - 0.5) * static_cast<double>(transform.mScaling.y);
    return {u * std::cos(angle) - v * std::sin(angle) + 0.5 + static_cast<double>(transform.mTranslation.x),
            u * std::sin(angle) + v * std::cos(angle) + 0.5 + static_cast<double>(transform.mTranslation.y)};
}

/// Whether the mesh has colours of vertices. Programs write white or black for all vertices of a mesh that
/// was not painted.
bool IsPainted(const aiMesh& mesh)
{
    if (!mesh.HasVertexColors(0))
        return false;
    const aiColor4D first = mesh.mColors[0][0];
    const bool is_white = first.r == 1.0F && first.g == 1.0F && first.b == 1.0F;
    const bool is_black = first.r == 0.0F && first.g == 0.0F && first.b == 0.0F;
    if (!is_white && !is_black)
        return true;
    return std::any_of(mesh.mColors[0], mesh.mColors[0] + mesh.mNumVertices, [&](const aiColor4D& color) {
        return color.r != first.r || color.g != first.g || color.b != first.b;
    });
}

/// The texture coordinates of the mesh for the material's texture; null without a texture or coordinates.
const aiVector3D* TexturePointsOf(const MeshMaterial& material, const aiMesh& mesh)
{
    if (material.texture == nullptr)
        return nullptr;
    return mesh
        .mTextureCoords[mesh.HasTextureCoords(material.texture_channel) ? material.texture_channel : 0];
}

} // namespace

MeshMaterials::MeshMaterials(const std::string& path, const aiScene& scene)
    : path_(path), scene_(scene), base_is_factor_(IsGltf(path))
{
    materials_.reserve(scene.mNumMaterials);
    for (unsigned int i = 0; i < scene.mNumMaterials; ++i)
        materials_.push_back(Read(*scene.mMaterials[i]));
}

const MeshMaterial& MeshMaterials::At(unsigned int index) const
{
    static const MeshMaterial grey;
    return index < materials_.size() ? materials_[index] : grey;
}

MeshMaterial MeshMaterials::Read(const aiMaterial& material)
{
    MeshMaterial result;
    result.color = BaseColorOf(material);
    result.opacity = OpacityOf(material);
    result.vertices_are_factors = IsGltf(path_);
    ReadTexture(result, material);
    return result;
}

void MeshMaterials::ReadTexture(MeshMaterial& result, const aiMaterial& material)
{
    const auto use = TextureOf(material);
    if (!use)
        return;
    const std::string name = use->name.C_Str();
    result.texture = textures_.At(name, [&] { return Load(name); });
    if (result.texture == nullptr)
        return;
    int channel = 0;
    if (material.Get(AI_MATKEY_UVWSRC(use->type, 0), channel) == AI_SUCCESS && channel >= 0)
        result.texture_channel = static_cast<unsigned int>(channel);
    material.Get(AI_MATKEY_UVTRANSFORM(use->type, 0), result.texture_transform);
    // A black factor would hide the texture. Programs write it where no factor is meant.
    aiColor4D color;
    const bool has_factor = base_is_factor_ && (material.Get(AI_MATKEY_BASE_COLOR, color) == AI_SUCCESS ||
                                                material.Get(AI_MATKEY_COLOR_DIFFUSE, color) == AI_SUCCESS);
    if (has_factor && !IsBlack(result.color))
        result.texture_factor = result.color;
}

std::optional<TextureImage> MeshMaterials::Load(const std::string& name) const
{
    if (const aiTexture* embedded = scene_.GetEmbeddedTexture(name.c_str()))
        return FromEmbedded(*embedded);
    return TextureStore::LoadFile(path_, name);
}

MeshColors::MeshColors(const MeshMaterial& material, const aiMesh& mesh)
    : material_(material), mesh_(mesh), texture_points_(TexturePointsOf(material, mesh)),
      is_painted_(IsPainted(mesh) && (material.vertices_are_factors || material.texture == nullptr))
{
}

FileColor MeshColors::Of(std::span<const unsigned int> vertices) const
{
    const FileColor color = material_.texture == nullptr ? material_.color : TextureOf(vertices);
    if (!is_painted_)
        return color;
    ColorMean mean;
    for (const unsigned int vertex : vertices)
        mean.Add(Opaque(ToColor(mesh_.mColors[0][vertex])));
    return material_.vertices_are_factors ? color * mean.Mean() : mean.Mean();
}

FileColor MeshColors::TextureOf(std::span<const unsigned int> vertices) const
{
    std::vector<TexturePoint> points;
    points.reserve(vertices.size());
    if (texture_points_ != nullptr)
        for (const unsigned int vertex : vertices)
            points.push_back(Transformed(texture_points_[vertex], material_.texture_transform));
    return material_.texture_factor * material_.texture->MeanNear(points);
}

} // namespace viewer
