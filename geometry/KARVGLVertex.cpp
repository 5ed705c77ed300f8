#include "geometry/KARVGLVertex.h"

namespace
{

/// 1/255. Channels are multiplied by it, not divided by 255.
constexpr double kPerChannelStep = 0.00392156862745098;

float FromChannel(unsigned char channel)
{
    return static_cast<float>(static_cast<double>(channel) * kPerChannelStep);
}

} // namespace

KARVGLVertex::KARVGLVertex(double x_in, double y_in, double z_in)
    : x(static_cast<float>(x_in)), y(static_cast<float>(y_in)), z(static_cast<float>(z_in))
{
}

KARVGLVertex::KARVGLVertex(unsigned char red, unsigned char green, unsigned char blue)
    : x(FromChannel(red)), y(FromChannel(green)), z(FromChannel(blue))
{
}
