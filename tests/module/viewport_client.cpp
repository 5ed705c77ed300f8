// A module that embeds the control, as the control's real clients do: the host's initialisation makes a
// window with a viewport, feeds it and draws it; the unload message destroys it. Its answer names the step
// that failed.
#include "control/KARVOpenGLControl.h"
#include "platform/host/rx/dynamic_linker.h"
#include "platform/host/rx/entry_points.h"
#include "platform/host/rx/system_registry.h"
#include "tests/support/shown_frame.h"

#include <memory>
#include <vector>

namespace
{

constexpr int kWidth = 64;
constexpr int kHeight = 48;
constexpr host::Answer kNoWindow{11};
constexpr host::Answer kNoViewport{12};
constexpr host::Answer kNotFed{13};
constexpr host::Answer kNotDrawn{14};

struct Client {
    CWnd window;
    KARVOpenGLControl viewport;
};

std::unique_ptr<Client> client;

/// A square, which is tessellated.
std::vector<KARVGLFace> Square()
{
    KARVGLFace face;
    face.vertices = {KARVGLVertex(0.0F, 0.0F, 0.0F), KARVGLVertex(0.0F, 0.1F, 0.0F),
                     KARVGLVertex(0.1F, 0.1F, 0.0F), KARVGLVertex(0.1F, 0.0F, 0.0F)};
    return {face};
}

host::Answer MakeClient()
{
    client = std::make_unique<Client>();
    if (!client->window.CreateEx(0, AfxRegisterWndClass(0), L"Client", WS_POPUP | WS_VISIBLE,
                                 CRect(0, 0, kWidth, kHeight), nullptr, 0))
        return kNoWindow;
    KARVOpenGLControl& viewport = client->viewport;
    viewport.CreateCtrl(CRect(0, 0, kWidth, kHeight), &client->window, false);
    if (viewport.m_hWnd == nullptr)
        return kNoViewport;
    constexpr unsigned short kRed = 1;
    viewport.AppendGeometry(Square(), KARVGraphicalEntity::EntityType0, kRed, 1.0F);
    if (viewport.GetFaceNumber() != 1)
        return kNotFed;
    viewport.CameraViewTop();
    viewport.OnDraw(nullptr);
    viewport.ForceRenderStart();
    return karv_test::NextFrame(viewport.m_hWnd) ? host::Answer::Ok : kNotDrawn;
}

} // namespace

extern "C" KARV_EXPORT host::Answer acrxEntryPoint(host::Message message, void* application)
{
    if (message == host::Message::Initialise) {
        AcRxDynamicLinker::cast(acrxSysRegistry()->at(kDynamicLinkerKey))->allowUnload(application);
        const host::Answer answer = MakeClient();
        if (answer != host::Answer::Ok)
            client.reset();
        return answer;
    }
    if (message == host::Message::Unload)
        client.reset();
    return host::Answer::Ok;
}
