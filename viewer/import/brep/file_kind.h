// The kind of a B-rep file, and a check of its first and last bytes. The library accepts a truncated file and
// returns a part of the model as if it were the whole.
#pragma once

#include <optional>
#include <string>

namespace viewer
{

enum class BrepKind { Step, Iges, Brep };

/// The kind by the file's extension, in either case: .step, .stp, .iges, .igs, .brep, .brp. No value for
/// other extensions.
[[nodiscard]] std::optional<BrepKind> BrepKindOf(const std::string& path);

/// Throws FileError as `CheckModelFile` does, and if the file does not begin and end as files of this kind
/// do. Reads at most 4 KiB at each end.
void CheckBrepFile(const std::string& path, BrepKind kind);

} // namespace viewer
