#include "tests/support/gl_test_window.h"

#include "platform/winsys/opengl.h"

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <stdexcept>

namespace karv_test
{
namespace
{

constexpr const wchar_t* kClassName = L"GlTestWindow";

void RegisterOnce()
{
    WNDCLASSW known{};
    if (GetClassInfoW(GetModuleHandleW(nullptr), kClassName, &known))
        return;
    WNDCLASSW window_class{};
    window_class.style = CS_OWNDC;
    window_class.lpfnWndProc = DefWindowProcW;
    window_class.hInstance = GetModuleHandleW(nullptr);
    window_class.lpszClassName = kClassName;
    RegisterClassW(&window_class);
}

PIXELFORMATDESCRIPTOR Descriptor()
{
    PIXELFORMATDESCRIPTOR descriptor{};
    descriptor.nSize = sizeof descriptor;
    descriptor.nVersion = 1;
    descriptor.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER;
    descriptor.iPixelType = PFD_TYPE_RGBA;
    descriptor.cColorBits = 32;
    descriptor.cDepthBits = 16;
    return descriptor;
}

HWND MakeWindow(int width, int height)
{
    UseTestWindows();
    RegisterOnce();
    return CreateWindowExW(0, kClassName, L"", WS_POPUP, 0, 0, width, height, nullptr, nullptr,
                           GetModuleHandleW(nullptr), nullptr);
}

HGLRC MakeContext(HDC dc)
{
    const PIXELFORMATDESCRIPTOR descriptor = Descriptor();
    SetPixelFormat(dc, ChoosePixelFormat(dc, &descriptor), &descriptor);
    return wglCreateContext(dc);
}

} // namespace

std::ostream& operator<<(std::ostream& out, const Pixel& pixel)
{
    return out << '(' << pixel.red << ", " << pixel.green << ", " << pixel.blue << ')';
}

bool IsNear(const Pixel& a, const Pixel& b, int tolerance)
{
    return std::abs(a.red - b.red) <= tolerance && std::abs(a.green - b.green) <= tolerance &&
           std::abs(a.blue - b.blue) <= tolerance;
}

Picture::Picture(int width, int height)
    : width_(width), height_(height), bytes_(static_cast<std::size_t>(width * height) * 3)
{
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, width, height, GL_RGB, GL_UNSIGNED_BYTE, bytes_.data());
}

Pixel Picture::At(int x, int y) const
{
    if (x < 0 || y < 0 || x >= width_ || y >= height_)
        throw std::out_of_range("a pixel outside the picture");
    const std::uint8_t* rgb = &bytes_.at(static_cast<std::size_t>(y * width_ + x) * 3);
    return {.red = rgb[0], .green = rgb[1], .blue = rgb[2]};
}

int Picture::CountOtherThan(const Pixel& background) const
{
    int count = 0;
    for (int y = 0; y < height_; ++y)
        for (int x = 0; x < width_; ++x)
            count += At(x, y) == background ? 0 : 1;
    return count;
}

void Picture::Write(const std::string& path) const
{
    std::ofstream file(path, std::ios::binary);
    file << "P6\n" << width_ << ' ' << height_ << "\n255\n";
    const auto row = static_cast<std::streamsize>(width_) * 3;
    for (int y = height_ - 1; y >= 0; --y)
        file.write(reinterpret_cast<const char*>(bytes_.data()) + y * row, row);
}

GlTestWindow::GlTestWindow(int width, int height)
    : width_(width), height_(height), window_(MakeWindow(width, height)), dc_(GetDC(window_)),
      context_(MakeContext(dc_))
{
    if (!wglMakeCurrent(dc_, context_))
        throw std::runtime_error("no GL context for a test window");
    glViewport(0, 0, width, height);
}

GlTestWindow::~GlTestWindow()
{
    wglMakeCurrent(dc_, nullptr);
    wglDeleteContext(context_);
    ReleaseDC(window_, dc_);
    DestroyWindow(window_);
}

void GlTestWindow::BeginPicture(double right, double top) const
{
    glClearColor(0.0F, 0.0F, 0.0F, 1.0F);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0.0, right, 0.0, top, -1.0, 1.0);
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
}

void GlTest::TearDown()
{
    if (!HasFailure())
        return;
    const testing::TestInfo* info = testing::UnitTest::GetInstance()->current_test_info();
    const std::string path = testing::TempDir() + info->test_suite_name() + "." + info->name() + ".ppm";
    window_.Read().Write(path);
    std::cout << "The picture is kept in " << path << '\n';
}

} // namespace karv_test
