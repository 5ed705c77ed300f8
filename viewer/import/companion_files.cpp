#include "viewer/import/companion_files.h"

#include "viewer/text/text.h"

#include <algorithm>
#include <string_view>
#include <system_error>

namespace viewer
{

namespace
{

namespace fs = std::filesystem;

bool StaysInFolder(const std::string& name)
{
    if (name.find_first_of("\\:") != std::string::npos || name.starts_with('/'))
        return false;
    const fs::path path(name);
    return std::none_of(path.begin(), path.end(), [](const fs::path& part) { return part == ".."; });
}

fs::path FolderOf(const fs::path& path)
{
    return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

} // namespace

std::string CompanionName(const std::string& name)
{
    if (StaysInFolder(name))
        return name;
    const std::string last = name.substr(name.find_last_of("/\\:") + 1);
    return last == ".." ? "" : last;
}

std::optional<fs::path> FindInAnyCase(const fs::path& path)
{
    std::error_code error;
    if (fs::is_regular_file(path, error))
        return path;
    const std::string name = LowerCase(path.filename().string());
    std::size_t seen = 0;
    for (fs::directory_iterator entry(FolderOf(path), error), end;
         !error && entry != end && seen < kMaxFilesInFolder; entry.increment(error), ++seen) {
        std::error_code ignored;
        if (LowerCase(entry->path().filename().string()) == name && entry->is_regular_file(ignored))
            return entry->path();
    }
    return std::nullopt;
}

bool IsBelow(const fs::path& folder, const fs::path& file)
{
    return std::mismatch(folder.begin(), folder.end(), file.begin(), file.end()).first == folder.end();
}

std::optional<std::string> FindCompanion(const std::string& model, std::string name)
{
    std::ranges::replace(name, '\\', '/');
    constexpr std::string_view kScheme = "file://";
    if (name.starts_with(kScheme))
        name.erase(0, kScheme.size());
    const fs::path named = CompanionName(name);
    const fs::path folder = FolderOf(model);
    std::error_code error;
    const fs::path real_folder = fs::canonical(folder, error);
    if (error)
        return std::nullopt;
    for (const fs::path& candidate :
         {folder / named, folder / named.filename(), folder / "textures" / named.filename()}) {
        const auto found = FindInAnyCase(candidate);
        if (!found)
            continue;
        const fs::path real = fs::canonical(*found, error);
        if (!error && IsBelow(real_folder, real))
            return found->string();
    }
    return std::nullopt;
}

} // namespace viewer
