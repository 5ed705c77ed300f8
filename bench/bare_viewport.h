// The bare program that the control is compared with: a window of the same window layer, a context with the
// same pixel format and state, and plain arrays. Its frame makes exactly the OpenGL and GLU calls of the
// control's frame. It does not use the component.
#pragma once

#include "bench/bare_tessellation.h"
#include "bench/scenes.h"
#include "platform/winsys/opengl.h"
#include "platform/winsys/winsys.h"

#include <array>
#include <cstdint>
#include <vector>

namespace karv_bench
{

/// The matrices that a frame is drawn with.
struct ViewMatrices {
    std::array<GLdouble, 16> model_view{};
    std::array<GLdouble, 16> projection{};

    /// Reads the matrices of the current context.
    [[nodiscard]] static ViewMatrices Current();
};

/// A viewport without the component.
class BareViewport
{
  public:
    /// Finds a multisampled format through a hidden window, as the control does. Returns 0 if there is none.
    [[nodiscard]] static int FindPixelFormat();

    /// Creates a child window of `side` by `side` pixels and a context with this pixel format, which becomes
    /// current.
    BareViewport(HWND parent, int side, int pixel_format);
    BareViewport(const BareViewport&) = delete;
    BareViewport& operator=(const BareViewport&) = delete;
    ~BareViewport();

    void MakeCurrent() const;
    void LoadMatrices(const ViewMatrices& matrices) const;
    /// Adds a copy of a piece, to be drawn in this colour, and compiles the lists of its faces.
    void Add(const Piece& piece, const KARVGLVertex& color);
    /// Clears, draws and swaps.
    void DrawFrame() const;

  private:
    struct Face {
        KARVGLVertex normal;
        GLuint list = 0;
        std::uint32_t first_corner = 0;
        std::uint32_t corner_count = 0;
    };
    struct Object {
        KARVGLVertex color;
        KARVGLVertex box_min;
        KARVGLVertex box_max;
        std::uint32_t first_face = 0;
        std::uint32_t face_count = 0;
        std::uint32_t first_line_corner = 0;
        std::uint32_t line_corner_count = 0;
    };

    void DrawObject(const Object& object) const;
    void DrawLines(const Object& object) const;
    void DrawFace(const Face& face) const;

    HWND window_ = nullptr;
    HDC dc_ = nullptr;
    HGLRC context_ = nullptr;
    BareTessellation tessellation_;
    std::vector<Object> objects_;
    std::vector<Face> faces_;
    std::vector<KARVGLVertex> corners_;
};

} // namespace karv_bench
