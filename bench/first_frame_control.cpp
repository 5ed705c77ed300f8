// Draws one frame of a box in the control, writes a byte to its output, and ends.
#include "bench/bench_window.h"

#include "platform/winsys/backends.h"
#include "platform/winsys/opengl.h"

#include <cstdio>
#include <exception>
#include <utility>

int main()
{
    constexpr int kSide = 64;
    try {
        karv_bench::UseOffscreenWindows();
        karv_bench::HostWindow host;
        karv_bench::MeasuredControl measured(host, kSide);
        for (karv_bench::Piece& piece : karv_bench::MakeBoxes(1))
            measured.Control().AppendGeometry(std::move(piece.faces), KARVGraphicalEntity::EntityType0,
                                              karv_bench::kColorIndex, 1.0F);
        measured.ShowScene();
        measured.DrawFrame();
        glFinish();
        if (winsys::GetSwapCount(measured.Control().m_hWnd) != 1)
            return 1;
        std::putchar('.');
        std::fflush(stdout);
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "first_frame_control: %s\n", error.what());
        return 1;
    }
}
