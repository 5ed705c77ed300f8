#include "control/KARVOpenGLControl.h"

#include "control/pixel_format_probe.h"
#include "control/window_class.h"
#include "module/guard.h"
#include "platform/host/gs/manager.h"
#include "platform/winsys/opengl.h"

#include <array>

using karv::DeletionWatch;
using karv::Guarded;
using karv::kWindowClassStyle;

namespace
{

/// Every control knows the categories from 0 to this one from its construction.
constexpr int kLastKnownCategory = 10;

} // namespace

KARVOpenGLControl::KARVOpenGLControl()
{
    Guarded<L"KARVOpenGLControl::KARVOpenGLControl">([&] {
        for (int category = 0; category <= kLastKnownCategory; ++category)
            disabledTypes.emplace(static_cast<KARVGraphicalEntity::EntityType>(category), false);
        const AcGsColor host = acgsGetGsManager(nullptr)->displayDevice()->backgroundColor();
        const KARVGLVertex background(host.red, host.green, host.blue);
        backgroundColor[0] = background.x;
        backgroundColor[1] = background.y;
        backgroundColor[2] = background.z;
    });
}

KARVOpenGLControl::~KARVOpenGLControl()
{
    Guarded<L"KARVOpenGLControl::~KARVOpenGLControl">([&] {
        wglMakeCurrent(hDC, nullptr);
        wglDeleteContext(hRC);
        hRC = nullptr;
        // The window's own device context is freed with the window, so hDC is not released.
        const HDC own = ::GetDC(m_hWnd);
        ::ReleaseDC(m_hWnd, own);
        CWnd::DestroyWindow();
        arbMultisampleSupported = false;
    });
}

void KARVOpenGLControl::CreateCtrl(CRect rect, CWnd* parent, bool transparent)
{
    Guarded<L"KARVOpenGLControl::CreateCtrl">([&] {
        const LPCWSTR window_class = AfxRegisterWndClass(
            kWindowClassStyle, nullptr, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)), nullptr);
        const DeletionWatch watch(lifetime);
        // WM_CREATE arrives during this call and creates the GL context.
        CreateEx(0, window_class, L"3DView", WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS | WS_CLIPCHILDREN, rect,
                 parent, 0, nullptr);
        if (watch.IsDeleted())
            return;
        createRect = rect;
        initialRect = rect;
        parentWnd = parent;
        if (transparent) {
            glDisable(GL_DEPTH_TEST);
            glDisable(GL_CULL_FACE);
            glEnable(GL_BLEND);
            glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        }
    });
}

const AFX_MSGMAP* KARVOpenGLControl::GetMessageMap() const
{
    static constexpr std::array kEntries = {
        OnWmSize<&KARVOpenGLControl::OnSize>(),
        OnWmCreate<&KARVOpenGLControl::OnCreate>(),
        OnWmTimer<&KARVOpenGLControl::OnTimer>(),
        OnWmMouseMove<&KARVOpenGLControl::OnMouseMove>(),
        OnWmMouseWheel<&KARVOpenGLControl::OnMouseWheel>(),
        OnWmPaint<&KARVOpenGLControl::OnPaint>(),
    };
    static const AFX_MSGMAP map{CWnd::GetThisMessageMap(), kEntries};
    return &map;
}

int KARVOpenGLControl::OnCreate(CREATESTRUCT* create)
{
    return Guarded<L"KARVOpenGLControl::OnCreate">([&] {
        const DeletionWatch watch(lifetime);
        const int result = CWnd::OnCreate(create);
        if (result == -1 || watch.IsDeleted())
            return -1;
        GLInitializeCtrl();
        return 0;
    });
}
