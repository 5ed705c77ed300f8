// The kind of a B-rep file, and a check of its first and last bytes. The library accepts a truncated file and
// returns a part of the model as if it were the whole.
#pragma once

#include <optional>
#include <string>

namespace viewer
{

enum class BrepKind { Step, Iges, Brep };

/// The kind by the file's extension, in either case: .step, .stp, .iges, .igs, .brep, .brp,
/// .bbrep. No value for other extensions.
[[nodiscard]] std::optional<BrepKind> BrepKindOf(const std::string& path);

/// Whether the file begins as a binary BREP file does. False if it cannot be read.
[[nodiscard]] bool IsBinaryBrep(const std::string& path);

/// Throws FileError as `CheckModelFile` does, and if the file does not begin and end as files of this kind
/// do. Reads at most 4 KiB at each end, and all lines of a BREP file with text after its end. The end
/// of a binary BREP file is not checked, because the library notices a truncated one.
void CheckBrepFile(const std::string& path, BrepKind kind);

} // namespace viewer
