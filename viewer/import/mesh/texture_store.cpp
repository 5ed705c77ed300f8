#include "viewer/import/mesh/texture_store.h"

#include "viewer/text/text.h"

#include <algorithm>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace viewer
{

namespace
{

namespace fs = std::filesystem;

/// The maximum number of files beside a model among which one is looked for.
constexpr std::size_t kMaxFilesInFolder = 10'000;

/// A file's texture may be named in the letters of another system.
std::optional<fs::path> WithoutCase(const fs::path& path)
{
    std::error_code error;
    const std::string name = LowerCase(path.filename().string());
    std::size_t seen = 0;
    const fs::path folder = path.has_parent_path() ? path.parent_path() : fs::path(".");
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end && seen < kMaxFilesInFolder;
         entry.increment(error), ++seen)
        if (LowerCase(entry->path().filename().string()) == name)
            return entry->path();
    return std::nullopt;
}

} // namespace

std::optional<std::string> FindBeside(const std::string& model, std::string name)
{
    std::replace(name.begin(), name.end(), '\\', '/');
    constexpr std::string_view kScheme = "file://";
    if (name.starts_with(kScheme))
        name.erase(0, kScheme.size());
    const fs::path folder = fs::path(model).parent_path();
    const fs::path named = fs::path(name);
    for (const fs::path& candidate :
         {folder / named, folder / named.filename(), folder / "textures" / named.filename()}) {
        std::error_code error;
        if (fs::is_regular_file(candidate, error))
            return candidate.string();
        if (const auto found = WithoutCase(candidate); found && fs::is_regular_file(*found, error))
            return found->string();
    }
    return std::nullopt;
}

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
    const auto file = FindBeside(model, name);
    return file ? TextureImage::FromFile(*file) : std::nullopt;
}

} // namespace viewer
