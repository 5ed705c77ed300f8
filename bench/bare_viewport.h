// The program that the control is measured against: a window of the same window layer with a context of the
// same pixel format and state, plain arrays, and a frame of exactly the OpenGL and GLU calls that the
// control's frame issues. It knows nothing of the component.
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

/// The matrices that the control leaves for its frames.
struct ViewMatrices {
    std::array<GLdouble, 16> model_view{};
    std::array<GLdouble, 16> projection{};

    /// Those of the current context.
    [[nodiscard]] static ViewMatrices Current();
};

class BareViewport
{
  public:
    /// Finds a multisampled format as the control does, through a hidden window; 0 where there is none.
    [[nodiscard]] static int FindPixelFormat();

    /// A square child window with a context of this pixel format, which becomes current.
    BareViewport(HWND parent, int side, int pixel_format);
    BareViewport(const BareViewport&) = delete;
    BareViewport& operator=(const BareViewport&) = delete;
    ~BareViewport();

    void MakeCurrent() const;
    void LoadMatrices(const ViewMatrices& matrices) const;
    /// Takes a piece in, drawn with this colour; compiles the lists of its faces.
    void Add(const Piece& piece, const KARVGLVertex& color);
    /// Clears, draws, swaps.
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
