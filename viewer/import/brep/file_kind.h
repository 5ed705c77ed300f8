// Whether the text of a B-rep file is whole: how it begins, and that it ends as its kind does. The library
// that parses it takes what is left of a file that was cut as if it were all.
#pragma once

#include <optional>
#include <string>

namespace viewer
{

enum class BrepKind { kStep, kIges, kBrep };

/// The kind by the file's ending, in any case: .step, .stp, .p21, .iges, .igs, .brep, .brp, .rle. Nothing
/// for others.
[[nodiscard]] std::optional<BrepKind> BrepKindOf(const std::string& path);

/// Throws FileError where the file is missing, not a regular file, unreadable or empty, of another kind than
/// its ending says, or does not end as its kind does.
void CheckBrepFile(const std::string& path, BrepKind kind);

} // namespace viewer
