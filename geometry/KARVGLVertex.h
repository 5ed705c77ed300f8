// The point record that carries geometry between clients, entities and the viewport. It stores single
// precision; doubles are narrowed when they are stored. It knows neither the meaning of its components nor
// the graphics library.
#pragma once

#include "module/export.h"

/// A point, a direction or a colour: exactly three floats without padding, so that an array of records has a
/// stride of three floats.
class KARV_MODULE_API KARVGLVertex
{
  public:
    float x = 0.0F; ///< model X, or red
    float y = 0.0F; ///< model Y, or green
    float z = 0.0F; ///< model Z, or blue

    /// (0, 0, 0).
    constexpr KARVGLVertex() = default;
    /// Model units. Each component is rounded to the nearest float.
    KARVGLVertex(double x_in, double y_in, double z_in);
    /// Colour channels 0 to 255, mapped to 0..1: multiplied by 1/255 in double precision, then narrowed.
    KARVGLVertex(unsigned char red, unsigned char green, unsigned char blue);

    bool operator==(const KARVGLVertex&) const = default;
};

static_assert(sizeof(KARVGLVertex) == 3 * sizeof(float));
