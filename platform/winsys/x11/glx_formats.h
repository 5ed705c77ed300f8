// The pixel formats of an X server, as GLX lists them.
#pragma once

#include "platform/winsys/backend.h"
#include "platform/winsys/x11/connection.h"

#include <vector>

#include <GL/glx.h>

namespace winsys::x11
{

/// A format with the X and GLX objects that make windows and contexts of it.
struct GlxFormat {
    GLXFBConfig config = nullptr;
    Visual* visual = nullptr;
    PixelFormat bits;
};

/// The depth of every format's visual. With a depth of 32 compositors would blend by the alpha channel.
inline constexpr int kVisualDepth = 24;

/// Returns the server's formats for double-buffered RGBA windows with 8 bits per channel, in the server's
/// order, one for each combination of alpha (8 or 0), depth, stencil and samples. Empty if the server has no
/// GLX or no such format.
[[nodiscard]] std::vector<GlxFormat> ListFormats(const Connection& connection);

} // namespace winsys::x11
