// The textures of a model file, each read once, and the files beside a model.
#pragma once

#include "viewer/import/mesh/texture_image.h"

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>

namespace viewer
{

/// A file that a model file names: relative to the model's folder, or beside the model, or in its folder
/// "textures", with letters in either case. Absent if there is none. Only regular files are found.
[[nodiscard]] std::optional<std::string> FindBeside(const std::string& model, std::string name);

class TextureStore
{
  public:
    using Loader = std::function<std::optional<TextureImage>()>;

    /// The texture of this name, which is loaded when it is first asked for. Null if it cannot be read, and for
    /// textures beyond `kMaxTextures`. Valid as long as the object.
    const TextureImage* At(const std::string& name, const Loader& load);
    /// The number of textures that were asked for and could not be read.
    [[nodiscard]] std::size_t Missing() const { return missing_; }

    /// Reads the image that a model file names.
    [[nodiscard]] static std::optional<TextureImage> LoadFile(const std::string& model,
                                                              const std::string& name);

    /// The maximum number of different textures; each needs up to half a megabyte.
    static constexpr std::size_t kMaxTextures = 256;

  private:
    std::map<std::string, std::optional<TextureImage>> textures_;
    std::size_t missing_ = 0;
};

} // namespace viewer
