// Options for reading a model file.
#pragma once

#include <optional>

namespace viewer
{

struct ImportOptions {
    /// The maximum distance between a curved face and its facets, and between a curve and its segments. In
    /// the unit of the file, above 0. If not set, half a pixel to a pixel of the picture.
    std::optional<double> deflection;
    /// The shorter side of the picture that shows the whole model, in pixels; above 0.
    int pixels = 768;

    /// Avoid options that crash libraries on some files, at the price of speed or detail. It is set for a
    /// second attempt, after the first one has crashed.
    bool safe = false;

    /// The default deflection, as a fraction of the diagonal of the model's box.
    [[nodiscard]] double RelativeDeflection() const
    {
        // A fitted model's larger extent covers 0.9 of the side. The diagonal is up to 1.7 times as long.
        constexpr double kFittedPart = 0.9;
        constexpr double kPixels = 0.5;
        return kPixels / (kFittedPart * pixels);
    }
};

} // namespace viewer
