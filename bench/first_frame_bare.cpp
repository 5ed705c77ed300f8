// Draws one frame of a box without the component, writes a byte to its output, and ends.
#include "bench/bare_viewport.h"
#include "bench/bench_window.h"

#include "platform/winsys/opengl.h"

#include <cstdio>
#include <exception>

int main()
{
    constexpr int kSide = 64;
    try {
        karv_bench::UseOffscreenWindows();
        karv_bench::HostWindow host;
        const int format = karv_bench::BareViewport::FindPixelFormat();
        karv_bench::BareViewport viewport(host.m_hWnd, kSide, format);
        for (const karv_bench::Piece& piece : karv_bench::MakeBoxes(1))
            viewport.Add(piece, karv_bench::PaletteColor());
        // Shows the box from above in parallel projection.
        glMatrixMode(GL_PROJECTION);
        glLoadIdentity();
        glOrtho(-karv_bench::kSceneEdge, karv_bench::kSceneEdge, -karv_bench::kSceneEdge,
                karv_bench::kSceneEdge, -karv_bench::kSceneEdge, karv_bench::kSceneEdge);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
        viewport.DrawFrame();
        glFinish();
        std::putchar('.');
        std::fflush(stdout);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "first_frame_bare: %s\n", error.what());
        return 1;
    }
}
