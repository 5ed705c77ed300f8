// The pixel formats of an X server, as GLX lists them.
#pragma once

#include "platform/winsys/backend.h"
#include "platform/winsys/x11/connection.h"

#include <vector>

#include <GL/glx.h>

namespace winsys::x11
{

/// A format with what X and GLX need to make windows and contexts of it.
struct GlxFormat {
    GLXFBConfig config = nullptr;
    Visual* visual = nullptr;
    PixelFormat bits;
};

/// The depth of every format's visual. One of 32 would have an alpha channel that compositors blend by.
inline constexpr int kVisualDepth = 24;

/// The server's formats for double-buffered RGBA windows with 8 bits a channel, one of each kind: alpha (8 or
/// 0), depth, stencil and samples. In the server's order. Empty where it has no GLX or offers none.
[[nodiscard]] std::vector<GlxFormat> ListFormats(const Connection& connection);

} // namespace winsys::x11
