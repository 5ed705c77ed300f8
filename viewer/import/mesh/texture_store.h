// The textures of a model file, each read once.
#pragma once

#include "viewer/import/mesh/texture_image.h"

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>

namespace viewer
{

class TextureStore
{
  public:
    using Loader = std::function<std::optional<TextureImage>()>;

    /// The texture of this name. It is loaded on the first call for the name. Null if it cannot be read, and
    /// for textures beyond `kMaxTextures`. Valid as long as the object.
    const TextureImage* At(const std::string& name, const Loader& load);
    /// The number of names for which `At` has returned null.
    [[nodiscard]] std::size_t Missing() const { return missing_; }

    /// Reads the image file that a model file names.
    [[nodiscard]] static std::optional<TextureImage> LoadFile(const std::string& model,
                                                              const std::string& name);

    /// The maximum number of different textures; each needs up to half a megabyte.
    static constexpr std::size_t kMaxTextures = 256;

  private:
    std::map<std::string, std::optional<TextureImage>> textures_;
    std::size_t missing_ = 0;
};

} // namespace viewer
