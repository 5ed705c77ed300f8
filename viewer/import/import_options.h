// What a user may say about how files are read.
#pragma once

#include <optional>

namespace viewer
{

/// The deflection by default: this part of the diagonal of what is being cut.
inline constexpr double kRelativeDeflection = 0.001;

struct ImportOptions {
    /// The farthest that the facets of a curved face and the segments of a curve may lie from it, in the
    /// units of the file; above 0. None for `kRelativeDeflection` of the model's diagonal.
    std::optional<double> deflection;
};

} // namespace viewer
