// The point record that carries all geometry between clients, entities and the viewport, in single precision:
// whatever arrives in double is narrowed when it is stored here. It knows neither what its components mean
// nor the graphics library.
#pragma once

#include "platform/winsys/export.h"

/// A point, a direction or a colour triple: exactly three floats with nothing between them, so that
/// arrays of records can be walked with a stride of three floats.
class KARV_MODULE_API KARVGLVertex
{
  public:
    float x = 0.0F; ///< model X, or red
    float y = 0.0F; ///< model Y, or green
    float z = 0.0F; ///< model Z, or blue

    /// (0, 0, 0).
    constexpr KARVGLVertex() = default;
    /// Model units; each component is narrowed to float, to nearest.
    KARVGLVertex(double x_in, double y_in, double z_in);
    /// Colour channels 0 to 255, mapped to 0..1: the product with 1/255 is taken in double, then narrowed.
    KARVGLVertex(unsigned char red, unsigned char green, unsigned char blue);

    bool operator==(const KARVGLVertex&) const = default;
};

static_assert(sizeof(KARVGLVertex) == 3 * sizeof(float));
