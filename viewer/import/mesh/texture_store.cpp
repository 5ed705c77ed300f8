#include "viewer/import/mesh/texture_store.h"

#include "viewer/import/companion_files.h"

namespace viewer
{

const TextureImage* TextureStore::At(const std::string& name, const Loader& load)
{
    const auto [found, is_new] = textures_.try_emplace(name);
    std::optional<TextureImage>& texture = found->second;
    if (is_new && textures_.size() <= kMaxTextures)
        texture = load();
    if (is_new && !texture)
        ++missing_;
    return texture ? &*texture : nullptr;
}

std::optional<TextureImage> TextureStore::LoadFile(const std::string& model, const std::string& name)
{
    const auto file = FindCompanion(model, name);
    return file ? TextureImage::FromFile(*file) : std::nullopt;
}

} // namespace viewer
