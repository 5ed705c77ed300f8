// Options for reading a model file.
#pragma once

#include <optional>

namespace viewer
{

/// The default deflection, as a fraction of the diagonal of the model's box.
inline constexpr double kRelativeDeflection = 0.001;

struct ImportOptions {
    /// The maximum distance between a curved face and its facets, and between a curve and its segments. In
    /// the unit of the file, above 0. If not set, `kRelativeDeflection` times the model's diagonal.
    std::optional<double> deflection;
    /// Avoid what is known to crash libraries on some files, at the price of speed or detail. It is set for a
    /// second attempt, after the first one has crashed.
    bool safe = false;
};

} // namespace viewer
