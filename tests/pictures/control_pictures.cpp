// Draws each scene with the control, as a host shows it, and writes the frames to files. It is the same
// program on every system, so the files can be compared.
//
//   control_pictures FOLDER
//
// The folder must exist. Files are named SCENE-VIEW-MODE-SAMPLING.ppm. Ends with status 1 and a line on
// standard error if a picture cannot be made.
#include "platform/winsys/frame_clock.h"
#include "platform/winsys/opengl.h"
#include "tests/pictures/scenes.h"
#include "tests/support/gl_test_window.h"
#include "tests/support/shown_frame.h"

#include <array>
#include <ctime>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>

using karv_test::Scene;
using karv_test::ShownFrame;

namespace
{

constexpr int kWidth = 240;
constexpr int kHeight = 180;

struct View {
    const char* name;
    bool perspective;
    void (KARVOpenGLControl::*command)();
};

constexpr std::array<View, 2> kViews = {{{"perspective_se", true, &KARVOpenGLControl::CameraViewSE},
                                         {"parallel_top", false, &KARVOpenGLControl::CameraViewTop}}};

struct Mode {
    const char* name;
    KARVGLRenderMode mode;
};

constexpr std::array<Mode, 2> kModes = {{{"faces", KARVGLRenderModeFaces}, {"lines", KARVGLRenderModeLines}}};

void Write(const ShownFrame& frame, const std::filesystem::path& path)
{
    std::ofstream file(path, std::ios::binary);
    file << "P6\n" << frame.width << ' ' << frame.height << "\n255\n";
    const auto row = static_cast<std::streamsize>(frame.width) * 3;
    for (int y = frame.height - 1; y >= 0; --y)
        file.write(reinterpret_cast<const char*>(frame.rgb.data()) + y * row, row);
    if (!file.flush())
        throw std::runtime_error("cannot be written: " + path.string());
}

/// Shows a scene in this view, in every mode, with and without multisampling.
void Draw(const Scene& scene, const View& view, CWnd& host, const std::filesystem::path& folder)
{
    KARVOpenGLControl control;
    control.CreateCtrl(CRect(0, 0, kWidth, kHeight), &host, scene.transparent);
    control.SetBgColor(20, 30, 60);
    control.ComputeExtents(false);
    scene.feed(control);
    // With a box of its own size a cube overflows the view by a quarter, so a larger box is set.
    control.OverrideExtents({-0.03, -0.03, -0.03}, {0.23, 0.23, 0.23});
    control.SetToPerspective(view.perspective);
    (control.*view.command)();
    control.ForceRenderStart();
    for (const Mode& mode : kModes) {
        control.SetRenderMode(mode.mode);
        for (const bool multisample : {true, false}) {
            const std::string name = std::string(scene.name) + '-' + view.name + '-' + mode.name + '-' +
                                     (multisample ? "multisampled" : "plain");
            (multisample ? glEnable : glDisable)(GL_MULTISAMPLE);
            const auto frame = karv_test::NextFrame(control.m_hWnd);
            if (!frame)
                throw std::runtime_error(name + ": no frame comes");
            Write(*frame, folder / (name + ".ppm"));
        }
    }
}

void DrawAll(const std::filesystem::path& folder)
{
    karv_test::UseTestWindows();
    // The clock does not advance, so that no frame counts as slow, which would switch multisampling off.
    winsys::SetFrameClock([] { return std::clock_t{0}; });
    CWnd host;
    if (!host.CreateEx(0, AfxRegisterWndClass(0), L"pictures", WS_POPUP | WS_VISIBLE,
                       CRect(0, 0, kWidth, kHeight), nullptr, 0))
        throw std::runtime_error("no window can be made");
    for (const Scene& scene : karv_test::Scenes())
        for (const View& view : kViews)
            Draw(scene, view, host, folder);
    host.DestroyWindow();
    winsys::SetFrameClock({});
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "usage: control_pictures FOLDER\n";
        return 2;
    }
    try {
        DrawAll(argv[1]);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "control_pictures: " << error.what() << '\n';
        return 1;
    }
}
