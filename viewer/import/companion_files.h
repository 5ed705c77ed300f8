// Files that a model file names: material libraries, textures, parts of an assembly. They are read only from
// the folder of the model and from folders below it.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

namespace viewer
{

/// The name of a file, made safe by its text alone. A name that may lead out of the folder that it is
/// relative to loses its path: one with a leading slash, a backslash, a colon or "..". Other names are
/// unchanged. The result is empty if the name has no last part.
[[nodiscard]] std::string CompanionName(const std::string& name);

/// The regular file with this path, or else one in the same folder whose name differs in the case of ASCII
/// letters only. No value if there is none. Among more than `kMaxFilesInFolder` files, the first ones are
/// compared.
[[nodiscard]] std::optional<std::filesystem::path> FindInAnyCase(const std::filesystem::path& path);
inline constexpr std::size_t kMaxFilesInFolder = 10'000;

/// Whether the file is in the folder or below it. Both paths are canonical.
[[nodiscard]] bool IsBelow(const std::filesystem::path& folder, const std::filesystem::path& file);

/// The regular file that a model file names: relative to the model's folder, or else by its last part in the
/// model's folder or in "textures" below it. Backslashes are separators, and the scheme "file://" is ignored.
/// Names that lead out of the folder lose their path, upper and lower case are the same, and links that lead
/// out of the folder are not followed. No value if there is no such file.
[[nodiscard]] std::optional<std::string> FindCompanion(const std::string& model, std::string name);

} // namespace viewer
