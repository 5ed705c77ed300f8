// The GL context of KARVOpenGLControl: its pixel format, its creation, and the GL state that is set once.
#include "control/KARVOpenGLControl.h"

#include "control/pixel_format_probe.h"
#include "control/window_class.h"
#include "module/guard.h"
#include "platform/winsys/opengl.h"

#include <array>

using karv::Guarded;
using karv::kWindowClassStyle;

namespace
{

constexpr int kDummyWindowSize = 10;

HWND CreateDummyWindow()
{
    const LPCWSTR window_class = AfxRegisterWndClass(kWindowClassStyle, nullptr, nullptr, nullptr);
    return CreateWindowExW(0, window_class, L"Dummy", 0, 0, 0, kDummyWindowSize, kDummyWindowSize, nullptr,
                           nullptr, GetModuleHandleW(nullptr), nullptr);
}

/// Finds the pixel format for the control's window. Extensions can only be looked up through a current
/// context, and a window's pixel format can be set only once, so a hidden dummy window is used for the
/// look-up.
void FindPixelFormat(HWND control_window, int& pixel_format)
{
    const HWND dummy = CreateDummyWindow();
    if (dummy == nullptr) {
        pixel_format = ChoosePixelFormat(GetDC(control_window), &kPixelFormatDescriptor);
        return;
    }
    ShowWindow(dummy, SW_HIDE);
    const HDC dummy_dc = GetDC(dummy);
    pixel_format = ChoosePixelFormat(dummy_dc, &kPixelFormatDescriptor);
    SetPixelFormat(dummy_dc, pixel_format, &kPixelFormatDescriptor);
    const HGLRC dummy_context = wglCreateContext(dummy_dc);
    wglMakeCurrent(dummy_dc, dummy_context);
    if (!ChooseMultisamplePixelFormat(dummy, kPixelFormatDescriptor)) {
        // On this path the dummy window and its context are kept on purpose: the control uses the format that
        // was chosen for them, and hosts rely on nothing being destroyed in between.
        return;
    }
    wglMakeCurrent(dummy_dc, nullptr);
    wglDeleteContext(dummy_context);
    const HDC own = GetDC(control_window);
    ReleaseDC(control_window, own);
    pixel_format = arbPixelFormat;
    DestroyWindow(dummy);
}

} // namespace

void KARVOpenGLControl::GLInitializeCtrl()
{
    Guarded<L"KARVOpenGLControl::GLInitializeCtrl">([&] {
        FindPixelFormat(m_hWnd, pixelFormat);
        hDC = ::GetDC(m_hWnd);
        SetPixelFormat(hDC, pixelFormat, &kPixelFormatDescriptor);
        hRC = wglCreateContext(hDC);
        wglMakeCurrent(hDC, hRC);

        glClearColor(backgroundColor[0], backgroundColor[1], backgroundColor[2], 1.0F);
        glClearDepth(1.0);
        glEnable(GL_CULL_FACE);
        // Clients list the corners of a face clockwise, seen from its visible side.
        glFrontFace(GL_CW);
        glCullFace(GL_BACK);
        glEnable(GL_DEPTH_TEST);
        glDepthFunc(GL_LEQUAL);
        GLInitializeLight();
        GLInitializeMaterials();
        glEnable(GL_LIGHT0);
        glEnable(GL_LIGHTING);
        glEnable(GL_COLOR_MATERIAL);
        glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
        glEnable(GL_NORMALIZE);
        glShadeModel(GL_SMOOTH);
        glHint(GL_PERSPECTIVE_CORRECTION_HINT, GL_NICEST);
        glEnable(GL_MULTISAMPLE);
        glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);

        OnDraw(nullptr);
    });
}

void KARVOpenGLControl::GLInitializeLight()
{
    Guarded<L"KARVOpenGLControl::GLInitializeLight">([&] {
        constexpr std::array<GLfloat, 4> kAmbient = {0.01F, 0.01F, 0.01F, 1.0F};
        constexpr std::array<GLfloat, 4> kDiffuse = {1.0F, 1.0F, 1.0F, 1.0F};
        constexpr std::array<GLfloat, 4> kSpecular = {1.0F, 1.0F, 1.0F, 1.0F};
        // No position is set: GL's default is a directional light along the view axis.
        glLightfv(GL_LIGHT0, GL_AMBIENT, kAmbient.data());
        glLightfv(GL_LIGHT0, GL_DIFFUSE, kDiffuse.data());
        glLightfv(GL_LIGHT0, GL_SPECULAR, kSpecular.data());
    });
}

void KARVOpenGLControl::GLInitializeMaterials()
{
    Guarded<L"KARVOpenGLControl::GLInitializeMaterials">([&] {
        constexpr std::array<GLfloat, 4> kAmbient = {1.0F, 1.0F, 1.0F, 1.0F};
        constexpr std::array<GLfloat, 4> kDiffuse = {1.0F, 1.0F, 1.0F, 1.0F};
        constexpr std::array<GLfloat, 4> kSpecular = {0.5F, 0.5F, 0.5F, 0.5F};
        constexpr GLfloat kShininess = 5.0F;
        glMaterialfv(GL_FRONT, GL_AMBIENT, kAmbient.data());
        glMaterialfv(GL_FRONT, GL_DIFFUSE, kDiffuse.data());
        glMaterialfv(GL_FRONT, GL_SPECULAR, kSpecular.data());
        glMaterialfv(GL_FRONT, GL_SHININESS, &kShininess);
    });
}
