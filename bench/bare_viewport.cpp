#include "bench/bare_viewport.h"

#include "platform/winsys/wgl_extensions.h"

#include <algorithm>

namespace karv_bench
{

namespace
{

constexpr double kZeroTolerance = 1e-20;
constexpr const wchar_t* kClassName = L"karv-bench-bare";

const PIXELFORMATDESCRIPTOR& FormatDescriptor()
{
    static const PIXELFORMATDESCRIPTOR descriptor = [] {
        PIXELFORMATDESCRIPTOR format{};
        format.nSize = sizeof format;
        format.nVersion = 1;
        format.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER;
        format.iPixelType = PFD_TYPE_RGBA;
        format.cColorBits = 32;
        format.cDepthBits = 16;
        format.iLayerType = PFD_MAIN_PLANE;
        return format;
    }();
    return descriptor;
}

void RegisterClassOnce()
{
    WNDCLASSW window_class{};
    window_class.style = CS_VREDRAW | CS_HREDRAW | CS_OWNDC;
    window_class.lpfnWndProc = &DefWindowProcW;
    window_class.hInstance = GetModuleHandleW(nullptr);
    window_class.lpszClassName = kClassName;
    RegisterClassW(&window_class); // fails if it is already registered
}

HWND CreateBareWindow(DWORD style, int side, HWND parent)
{
    RegisterClassOnce();
    return CreateWindowExW(0, kClassName, L"bare", style, 0, 0, side, side, parent, nullptr,
                           GetModuleHandleW(nullptr), nullptr);
}

HGLRC CreateContext(HDC dc, int pixel_format)
{
    SetPixelFormat(dc, pixel_format, &FormatDescriptor());
    return wglCreateContext(dc);
}

/// Sets the state that the control sets once.
void SetFixedState()
{
    constexpr std::array<GLfloat, 4> kAmbientLight = {0.01F, 0.01F, 0.01F, 1.0F};
    constexpr std::array<GLfloat, 4> kFull = {1.0F, 1.0F, 1.0F, 1.0F};
    constexpr std::array<GLfloat, 4> kHalf = {0.5F, 0.5F, 0.5F, 0.5F};
    glClearColor(0.0F, 0.0F, 0.0F, 1.0F);
    glClearDepth(1.0);
    glEnable(GL_CULL_FACE);
    glFrontFace(GL_CW);
    glCullFace(GL_BACK);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glLightfv(GL_LIGHT0, GL_AMBIENT, kAmbientLight.data());
    glLightfv(GL_LIGHT0, GL_DIFFUSE, kFull.data());
    glLightfv(GL_LIGHT0, GL_SPECULAR, kFull.data());
    glMaterialfv(GL_FRONT, GL_AMBIENT, kFull.data());
    glMaterialfv(GL_FRONT, GL_DIFFUSE, kFull.data());
    glMaterialfv(GL_FRONT, GL_SPECULAR, kHalf.data());
    glMaterialf(GL_FRONT, GL_SHININESS, 5.0F);
    glEnable(GL_LIGHT0);
    glEnable(GL_LIGHTING);
    glEnable(GL_COLOR_MATERIAL);
    glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
    glEnable(GL_NORMALIZE);
    glShadeModel(GL_SMOOTH);
    glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_NICEST);
    glEnable(GL_MULTISAMPLE);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
}

/// Returns the format with 4 samples, looked up through the current context, or 0.
int QueryFormat(HDC dc)
{
    const auto choose = reinterpret_cast<PFNWGLCHOOSEPIXELFORMATARBPROC>(
        reinterpret_cast<void (*)()>(wglGetProcAddress("wglChoosePixelFormatARB")));
    if (choose == nullptr)
        return 0;
    // clang-format off
    constexpr std::array<int, 11> kAttributes = {
        WGL_DOUBLE_BUFFER_ARB,  1,
        WGL_DEPTH_BITS_ARB,     16,
        WGL_ALPHA_BITS_ARB,     8,
        WGL_SAMPLE_BUFFERS_ARB, 1,
        WGL_SAMPLES_ARB,        4,
        0,
    };
    // clang-format on
    int format = 0;
    UINT count = 0;
    return choose(dc, kAttributes.data(), nullptr, 1, &format, &count) != FALSE && count > 0 ? format : 0;
}

void GrowBox(const KARVGLVertex& point, KARVGLVertex& min, KARVGLVertex& max)
{
    min.x = std::min(min.x, point.x);
    min.y = std::min(min.y, point.y);
    min.z = std::min(min.z, point.z);
    max.x = std::max(max.x, point.x);
    max.y = std::max(max.y, point.y);
    max.z = std::max(max.z, point.z);
}

/// The matrices and the viewport with which a frame projects boxes.
struct Projection {
    ViewMatrices matrices = ViewMatrices::Current();
    std::array<GLint, 4> viewport{};

    Projection() { glGetIntegerv(GL_VIEWPORT, viewport.data()); }

    [[nodiscard]] bool IsLeftAndBelow(const KARVGLVertex& point) const
    {
        GLdouble x = 0.0;
        GLdouble y = 0.0;
        GLdouble z = 0.0;
        gluProject(point.x, point.y, point.z, matrices.model_view.data(), matrices.projection.data(),
                   viewport.data(), &x, &y, &z);
        return x < -kZeroTolerance && y < -kZeroTolerance;
    }
};

GLenum PrimitiveOf(std::uint32_t corner_count)
{
    return corner_count == 3 ? GL_TRIANGLES : corner_count == 4 ? GL_QUADS : GL_TRIANGLE_FAN;
}

} // namespace

ViewMatrices ViewMatrices::Current()
{
    ViewMatrices current;
    glGetDoublev(GL_MODELVIEW_MATRIX, current.model_view.data());
    glGetDoublev(GL_PROJECTION_MATRIX, current.projection.data());
    return current;
}

int BareViewport::FindPixelFormat()
{
    constexpr int kProbeSide = 10;
    const HWND window = CreateBareWindow(0, kProbeSide, nullptr);
    const HDC dc = GetDC(window);
    SetPixelFormat(dc, ChoosePixelFormat(dc, &FormatDescriptor()), &FormatDescriptor());
    const HGLRC context = wglCreateContext(dc);
    wglMakeCurrent(dc, context);
    const int format = QueryFormat(dc);
    wglMakeCurrent(dc, nullptr);
    wglDeleteContext(context);
    DestroyWindow(window);
    return format;
}

BareViewport::BareViewport(HWND parent, int side, int pixel_format)
    : window_(CreateBareWindow(WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_CLIPCHILDREN, side, parent)),
      dc_(GetDC(window_)), context_(CreateContext(dc_, pixel_format))
{
    MakeCurrent();
    SetFixedState();
    glViewport(0, 0, side, side);
}

BareViewport::~BareViewport()
{
    wglMakeCurrent(dc_, nullptr);
    wglDeleteContext(context_);
    DestroyWindow(window_);
}

void BareViewport::MakeCurrent() const
{
    wglMakeCurrent(dc_, context_);
}

void BareViewport::LoadMatrices(const ViewMatrices& matrices) const
{
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixd(matrices.projection.data());
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixd(matrices.model_view.data());
}

void BareViewport::Add(const Piece& piece, const KARVGLVertex& color)
{
    Object object;
    object.color = color;
    object.first_face = static_cast<std::uint32_t>(faces_.size());
    object.face_count = static_cast<std::uint32_t>(piece.faces.size());
    const KARVGLVertex& seed =
        piece.faces.empty() ? piece.line_vertices.front() : piece.faces.front().vertices.front();
    object.box_min = seed;
    object.box_max = seed;
    const auto add_corner = [&](const KARVGLVertex& corner) {
        corners_.push_back(corner);
        GrowBox(corner, object.box_min, object.box_max);
    };
    for (const KARVGLFace& source : piece.faces) {
        Face& face = faces_.emplace_back();
        face.normal = source.normal;
        face.first_corner = static_cast<std::uint32_t>(corners_.size());
        face.corner_count = static_cast<std::uint32_t>(source.vertices.size());
        if (face.corner_count >= 4)
            face.list = tessellation_.Compile(source.vertices);
        std::ranges::for_each(source.vertices, add_corner);
    }
    object.first_line_corner = static_cast<std::uint32_t>(corners_.size());
    object.line_corner_count = static_cast<std::uint32_t>(piece.line_vertices.size());
    std::ranges::for_each(piece.line_vertices, add_corner);
    objects_.push_back(object);
}

void BareViewport::DrawFrame() const
{
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    const Projection projection;
    for (const Object& object : objects_) {
        const bool min_outside = projection.IsLeftAndBelow(object.box_min);
        const bool max_outside = projection.IsLeftAndBelow(object.box_max);
        if (!min_outside || !max_outside)
            DrawObject(object);
    }
    SwapBuffers(dc_);
}

void BareViewport::DrawObject(const Object& object) const
{
    if (object.face_count == 0)
        DrawLines(object);
    glColor4f(object.color.x, object.color.y, object.color.z, 1.0F);
    for (std::uint32_t i = 0; i < object.face_count; ++i)
        DrawFace(faces_[object.first_face + i]);
}

void BareViewport::DrawLines(const Object& object) const
{
    glDisable(GL_LIGHTING);
    glColor3f(object.color.x, object.color.y, object.color.z);
    const KARVGLVertex* corner = &corners_[object.first_line_corner];
    for (std::uint32_t i = 0; i < object.line_corner_count; i += 2, corner += 2) {
        glBegin(GL_LINES);
        glVertex3f(corner[0].x, corner[0].y, corner[0].z);
        glVertex3f(corner[1].x, corner[1].y, corner[1].z);
        glEnd();
    }
    glEnable(GL_LIGHTING);
}

void BareViewport::DrawFace(const Face& face) const
{
    glNormal3f(face.normal.x, face.normal.y, face.normal.z);
    if (face.list != 0) {
        glCallList(face.list);
        static_cast<void>(glGetError());
        return;
    }
    glBegin(PrimitiveOf(face.corner_count));
    const KARVGLVertex* corner = &corners_[face.first_corner];
    for (std::uint32_t i = 0; i < face.corner_count; ++i, ++corner)
        glVertex3f(corner->x, corner->y, corner->z);
    glEnd();
}

} // namespace karv_bench
