// Device contexts, pixel formats, rendering contexts and drawing.
#include "platform/winsys/opengl.h"
#include "platform/winsys/wgl_extensions.h"
#include "tests/platform/winsys_contract.h"

#include <array>
#include <vector>

namespace karv_test
{

using WinsysGraphics = GraphicsContract;

INSTANTIATE_TEST_SUITE_P(Backends, WinsysGraphics, EveryBackend(), BackendTestName);

TEST_P(WinsysGraphics, OwnDeviceContextIsAlwaysTheSame)
{
    const HWND window = Make(L"a");
    const HDC dc = GetDC(window);
    ASSERT_NE(dc, nullptr);
    EXPECT_EQ(GetDC(window), dc);
    EXPECT_EQ(ReleaseDC(window, dc), 1);
    EXPECT_EQ(WindowFromDC(dc), window);
    EXPECT_EQ(GetDC(window), dc);
}

TEST_P(WinsysGraphics, CommonDeviceContextIsNewEachTimeAndEndsWithItsRelease)
{
    WNDCLASSW window_class{};
    window_class.lpfnWndProc = DefWindowProcW;
    window_class.lpszClassName = L"Common";
    RegisterClassW(&window_class);
    const HWND window = CreateWindowExW(0, L"Common", L"", 0, 0, 0, 8, 8, nullptr, nullptr, nullptr, nullptr);
    const HDC first = GetDC(window);
    const HDC second = GetDC(window);
    EXPECT_NE(first, second);
    EXPECT_EQ(ReleaseDC(window, first), 1);
    EXPECT_EQ(ReleaseDC(window, first), 0);
    EXPECT_EQ(WindowFromDC(first), nullptr);
    EXPECT_EQ(WindowFromDC(second), window);
    DestroyWindow(window);
    EXPECT_EQ(WindowFromDC(second), nullptr);
    UnregisterClassW(L"Common", nullptr);
}

TEST_P(WinsysGraphics, ScreenHasADeviceContextWithoutPixelFormat)
{
    const HDC screen = GetDC(nullptr);
    ASSERT_NE(screen, nullptr);
    EXPECT_GT(DescribePixelFormat(screen, 1, 0, nullptr), 0);
    EXPECT_FALSE(SetPixelFormat(screen, 1, nullptr));
    EXPECT_EQ(wglCreateContext(screen), nullptr);
    EXPECT_FALSE(SwapBuffers(screen));
    EXPECT_EQ(ReleaseDC(nullptr, screen), 1);
}

TEST_P(WinsysGraphics, ChosenFormatHasTheBitsAndNoSamples)
{
    const HWND window = Make(L"a");
    const HDC dc = PrepareDc(window);
    PIXELFORMATDESCRIPTOR found{};
    const int count = DescribePixelFormat(dc, GetPixelFormat(dc), sizeof found, &found);
    EXPECT_GE(count, 1);
    EXPECT_EQ(found.nSize, 40);
    EXPECT_EQ(found.dwFlags & 0x25U, 0x25U);
    EXPECT_EQ(found.cColorBits, 32);
    EXPECT_EQ(found.cAlphaBits, 8);
    EXPECT_GE(found.cDepthBits, 16);
    EXPECT_EQ(found.cStencilBits, 0);
    wglMakeCurrent(dc, MakeContext(dc));
    GLint samples = -1;
    glGetIntegerv(0x80A9 /* GL_SAMPLES */, &samples);
    EXPECT_EQ(samples, 0);
    GLint depth = 0;
    glGetIntegerv(GL_DEPTH_BITS, &depth);
    EXPECT_EQ(depth, found.cDepthBits);
}

TEST_P(WinsysGraphics, FormatsAreNumberedFromOne)
{
    const HDC dc = GetDC(Make(L"a"));
    PIXELFORMATDESCRIPTOR found{};
    const int count = DescribePixelFormat(dc, 1, sizeof found, &found);
    ASSERT_GE(count, 1);
    EXPECT_EQ(DescribePixelFormat(dc, count, sizeof found, &found), count);
    EXPECT_EQ(DescribePixelFormat(dc, 0, sizeof found, &found), 0);
    EXPECT_EQ(DescribePixelFormat(dc, count + 1, sizeof found, &found), 0);
    EXPECT_EQ(DescribePixelFormat(dc, 1, sizeof found - 1, &found), 0);
    EXPECT_EQ(DescribePixelFormat(nullptr, 1, sizeof found, &found), 0);
    EXPECT_FALSE(SetPixelFormat(dc, 0, nullptr));
    EXPECT_FALSE(SetPixelFormat(dc, count + 1, nullptr));
    EXPECT_EQ(GetPixelFormat(dc), 0);
}

TEST_P(WinsysGraphics, WindowKeepsItsFirstFormat)
{
    const HDC dc = GetDC(Make(L"a"));
    EXPECT_TRUE(SetPixelFormat(dc, 1, nullptr));
    EXPECT_TRUE(SetPixelFormat(dc, 1, nullptr));
    EXPECT_FALSE(SetPixelFormat(dc, 2, nullptr));
    EXPECT_EQ(GetPixelFormat(dc), 1);
}

TEST_P(WinsysGraphics, ContextNeedsAPixelFormat)
{
    const HDC dc = GetDC(Make(L"a"));
    EXPECT_EQ(wglCreateContext(dc), nullptr);
    EXPECT_FALSE(SwapBuffers(dc));
    EXPECT_EQ(wglCreateContext(nullptr), nullptr);
}

TEST_P(WinsysGraphics, CurrentContextAndItsDeviceContextAreKnown)
{
    EXPECT_EQ(wglGetCurrentContext(), nullptr);
    const HDC dc = PrepareDc(Make(L"a"));
    const HGLRC context = MakeContext(dc);
    ASSERT_TRUE(wglMakeCurrent(dc, context));
    EXPECT_EQ(wglGetCurrentContext(), context);
    EXPECT_EQ(wglGetCurrentDC(), dc);
    EXPECT_NE(glGetString(GL_VERSION), nullptr);
    EXPECT_TRUE(wglMakeCurrent(nullptr, nullptr));
    EXPECT_EQ(wglGetCurrentContext(), nullptr);
    EXPECT_EQ(wglGetCurrentDC(), nullptr);
}

TEST_P(WinsysGraphics, ReleaseWorksWithTheDeviceContextOfAnotherWindow)
{
    MakeDrawable(L"a");
    const HDC other = GetDC(Make(L"b"));
    EXPECT_TRUE(wglMakeCurrent(other, nullptr));
    EXPECT_EQ(wglGetCurrentContext(), nullptr);
}

TEST_P(WinsysGraphics, FormatsOfContextAndWindowMustAgree)
{
    const HDC first = PrepareDc(Make(L"a"));
    const HGLRC context = MakeContext(first);
    const HDC second = GetDC(Make(L"b"));
    EXPECT_FALSE(wglMakeCurrent(second, context)) << "no format yet";
    SetPixelFormat(second, GetPixelFormat(first) == 1 ? 2 : 1, nullptr);
    EXPECT_FALSE(wglMakeCurrent(second, context)) << "another format";
    EXPECT_EQ(wglGetCurrentContext(), nullptr);
}

TEST_P(WinsysGraphics, RefusedChangeKeepsTheCurrentContext)
{
    MakeDrawable(L"a");
    const HGLRC context = wglGetCurrentContext();
    EXPECT_FALSE(wglMakeCurrent(GetDC(Make(L"b")), context));
    EXPECT_EQ(wglGetCurrentContext(), context);
}

TEST_P(WinsysGraphics, DeletingTheCurrentContextReleasesIt)
{
    MakeDrawable(L"a");
    const HGLRC context = wglGetCurrentContext();
    EXPECT_TRUE(wglDeleteContext(context));
    EXPECT_EQ(wglGetCurrentContext(), nullptr);
    EXPECT_FALSE(wglDeleteContext(context));
    EXPECT_FALSE(wglMakeCurrent(GetDC(Make(L"b")), context));
    EXPECT_FALSE(wglDeleteContext(nullptr));
}

TEST_P(WinsysGraphics, ContextOutlivesItsWindow)
{
    const HDC dc = PrepareDc(Make(L"a"));
    const HGLRC context = MakeContext(dc);
    DestroyWindow(WindowFromDC(dc));
    EXPECT_FALSE(wglMakeCurrent(dc, context));
    const HDC next = PrepareDc(Make(L"b"));
    EXPECT_TRUE(wglMakeCurrent(next, context)) << "a window of the same format can take it over";
    EXPECT_TRUE(wglDeleteContext(context));
}

TEST_P(WinsysGraphics, GlStaysHarmlessWhenTheCurrentWindowDies)
{
    const HWND window = MakeDrawable(L"a");
    const HGLRC context = wglGetCurrentContext();
    const HDC dc = wglGetCurrentDC();
    DestroyWindow(window);
    EXPECT_EQ(wglGetCurrentContext(), context);
    Clear(1, 0, 0);
    glFinish();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    EXPECT_FALSE(SwapBuffers(dc));
    EXPECT_TRUE(wglMakeCurrent(dc, nullptr));
    EXPECT_TRUE(wglDeleteContext(context));
}

TEST_P(WinsysGraphics, TwoWindowsKeepTheirPictures)
{
    const HWND a = MakeDrawable(L"a");
    const HGLRC context_a = wglGetCurrentContext();
    Clear(1, 0, 0);
    MakeDrawable(L"b");
    Clear(0, 1, 0);
    EXPECT_EQ(Picture(64, 64).At(5, 5), kGreen);
    ASSERT_TRUE(wglMakeCurrent(GetDC(a), context_a));
    EXPECT_EQ(Picture(64, 64).At(5, 5), kRed);
}

TEST_P(WinsysGraphics, ResizeKeepsContextStateAndViewport)
{
    const HWND window = MakeDrawable(L"a");
    const HGLRC context = wglGetCurrentContext();
    glViewport(1, 2, 30, 40);
    glEnable(GL_LIGHTING);
    MoveWindow(window, 0, 0, 200, 100, TRUE);
    SwapBuffers(wglGetCurrentDC());
    EXPECT_EQ(wglGetCurrentContext(), context);
    std::array<GLint, 4> viewport{};
    glGetIntegerv(GL_VIEWPORT, viewport.data());
    EXPECT_EQ(viewport, (std::array<GLint, 4>{1, 2, 30, 40}));
    EXPECT_TRUE(glIsEnabled(GL_LIGHTING));
    Clear(0, 1, 0);
    EXPECT_EQ(Picture(200, 100).At(199, 99), kGreen) << "the frame after the next swap has the new size";
}

TEST_P(WinsysGraphics, ResizeOfAWindowThatIsNotCurrent)
{
    const HWND a = MakeDrawable(L"a");
    const HGLRC context_a = wglGetCurrentContext();
    MakeDrawable(L"b");
    const HGLRC context_b = wglGetCurrentContext();
    Clear(0, 1, 0);
    MoveWindow(a, 0, 0, 100, 100, TRUE);
    EXPECT_EQ(wglGetCurrentContext(), context_b);
    EXPECT_EQ(Picture(64, 64).At(0, 0), kGreen);
    ASSERT_TRUE(wglMakeCurrent(GetDC(a), context_a));
    SwapBuffers(GetDC(a));
    Clear(1, 0, 0);
    EXPECT_EQ(Picture(100, 100).At(99, 99), kRed);
}

TEST_P(WinsysGraphics, EmptyWindowCanBeDrawnTo)
{
    const HWND window = MakeDrawable(L"a");
    MoveWindow(window, 0, 0, 0, 0, TRUE);
    Clear(1, 0, 0);
    EXPECT_TRUE(SwapBuffers(GetDC(window)));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    MoveWindow(window, 0, 0, 16, 16, TRUE);
    Clear(0, 1, 0);
    EXPECT_EQ(Picture(16, 16).At(15, 15), kGreen);
}

TEST_P(WinsysGraphics, HugeWindowDoesNoHarm)
{
    const HWND window = MakeDrawable(L"a");
    EXPECT_TRUE(MoveWindow(window, 0, 0, 100'000, 100'000, TRUE));
    Clear(1, 0, 0);
    MoveWindow(window, 0, 0, 16, 16, TRUE);
    while (glGetError() != GL_NO_ERROR) {
    }
    Clear(0, 1, 0);
    EXPECT_EQ(Picture(16, 16).At(15, 15), kGreen);
}

TEST_P(WinsysGraphics, HundredContextsInARow)
{
    for (int i = 0; i < 100; ++i) {
        const HWND window = MakeDrawable(L"a");
        Clear(0, 1, 0);
        ASSERT_EQ(Picture(8, 8).At(7, 7), kGreen);
        EXPECT_TRUE(wglDeleteContext(wglGetCurrentContext()));
        DestroyWindow(window);
    }
}

TEST_P(WinsysGraphics, EntryPointsNeedACurrentContext)
{
    EXPECT_EQ(wglGetProcAddress("wglGetExtensionsStringARB"), nullptr);
    MakeDrawable(L"a");
    EXPECT_NE(wglGetProcAddress("wglGetExtensionsStringARB"), nullptr);
    EXPECT_NE(wglGetProcAddress("wglChoosePixelFormatARB"), nullptr);
    EXPECT_EQ(wglGetProcAddress("wglNoSuchFunction"), nullptr);
    EXPECT_EQ(wglGetProcAddress(nullptr), nullptr);
}

TEST_P(WinsysGraphics, ExtensionsNameWhatIsThere)
{
    MakeDrawable(L"a");
    const auto extensions = Look<PFNWGLGETEXTENSIONSSTRINGARBPROC>("wglGetExtensionsStringARB");
    ASSERT_NE(extensions, nullptr);
    const char* words = extensions(wglGetCurrentDC());
    ASSERT_NE(words, nullptr);
    EXPECT_THAT(words, testing::HasSubstr("WGL_ARB_extensions_string"));
    EXPECT_THAT(words, testing::HasSubstr("WGL_ARB_pixel_format"));
    EXPECT_THAT(words, testing::HasSubstr("WGL_ARB_multisample"));
    EXPECT_EQ(extensions(nullptr), nullptr);
}

TEST_P(WinsysGraphics, AttributesChooseAMultisampledFormat)
{
    MakeDrawable(L"a");
    const HDC dc = wglGetCurrentDC();
    const int format = Choose(dc, {WGL_DRAW_TO_WINDOW_ARB, 1,
                                   WGL_SUPPORT_OPENGL_ARB, 1,
                                   WGL_ACCELERATION_ARB,   WGL_FULL_ACCELERATION_ARB,
                                   WGL_COLOR_BITS_ARB,     24,
                                   WGL_ALPHA_BITS_ARB,     8,
                                   WGL_DEPTH_BITS_ARB,     16,
                                   WGL_STENCIL_BITS_ARB,   0,
                                   WGL_DOUBLE_BUFFER_ARB,  1,
                                   WGL_SAMPLE_BUFFERS_ARB, 1,
                                   WGL_SAMPLES_ARB,        4});
    ASSERT_NE(format, 0);
    PIXELFORMATDESCRIPTOR found{};
    DescribePixelFormat(dc, format, sizeof found, &found);
    EXPECT_GE(found.cDepthBits, 16);
    EXPECT_GE(found.cAlphaBits, 8);
    const HDC other = GetDC(MakeShown(L"b"));
    ASSERT_TRUE(SetPixelFormat(other, format, nullptr));
    ASSERT_TRUE(wglMakeCurrent(other, MakeContext(other)));
    GLint samples = 0;
    glGetIntegerv(0x80A9 /* GL_SAMPLES */, &samples);
    EXPECT_EQ(samples, 4);
}

TEST_P(WinsysGraphics, AttributesThatNoFormatHasGiveNone)
{
    MakeDrawable(L"a");
    const HDC dc = wglGetCurrentDC();
    for (const auto& attributes : std::vector<std::vector<int>>{{WGL_ACCELERATION_ARB, 0x2025},
                                                                {WGL_PIXEL_TYPE_ARB, 0x202C},
                                                                {WGL_COLOR_BITS_ARB, 33},
                                                                {WGL_ALPHA_BITS_ARB, 9},
                                                                {WGL_DEPTH_BITS_ARB, 33},
                                                                {WGL_STENCIL_BITS_ARB, 9},
                                                                {WGL_SAMPLE_BUFFERS_ARB, 2},
                                                                {WGL_SAMPLES_ARB, 1000}}) {
        EXPECT_EQ(Choose(dc, attributes), 0) << attributes[0];
    }
}

TEST_P(WinsysGraphics, EdgeOfAMultisampledPictureIsBlended)
{
    MakeDrawable(L"probe");
    const int format = Choose(wglGetCurrentDC(), {WGL_SAMPLE_BUFFERS_ARB, 1, WGL_SAMPLES_ARB, 4});
    ASSERT_NE(format, 0);
    const HWND window = MakeShown(L"a");
    const HDC dc = GetDC(window);
    ASSERT_TRUE(SetPixelFormat(dc, format, nullptr));
    ASSERT_TRUE(wglMakeCurrent(dc, MakeContext(dc)));
    glEnable(GL_MULTISAMPLE);
    glViewport(0, 0, 64, 64);
    Clear(0, 0, 0);
    // A white half plane left of the window's column 10 and half of the next: x = (10.5 / 64) * 2 - 1.
    const float edge = 10.5F / 64.0F * 2.0F - 1.0F;
    glRectf(-1.0F, -1.0F, edge, 1.0F);
    const Picture picture = ReadFrame(window);
    const Pixel on_edge = picture.At(10, 32);
    EXPECT_EQ(picture.At(9, 32), (Pixel{255, 255, 255}));
    EXPECT_EQ(picture.At(11, 32), (Pixel{0, 0, 0}));
    // Each of the four samples counts a quarter; one to three of them are in the left half of the pixel.
    EXPECT_GE(on_edge.red, 60);
    EXPECT_LE(on_edge.red, 195);
}

} // namespace karv_test
