// Window messages, and the handlers called alone, with values that no message can carry.
#include "tests/control/model/operations.h"

#include "platform/winsys/winsys.h"

namespace karv_model
{
namespace
{

unsigned DrawFlags(Random& random)
{
    constexpr unsigned kFlags[] = {MK_LBUTTON,
                                   MK_MBUTTON,
                                   MK_RBUTTON,
                                   MK_LBUTTON | MK_MBUTTON,
                                   MK_LBUTTON | MK_RBUTTON,
                                   MK_MBUTTON | MK_RBUTTON,
                                   MK_LBUTTON | MK_MBUTTON | MK_RBUTTON,
                                   MK_LBUTTON | 0x0004U,
                                   MK_LBUTTON | 0x0008U,
                                   MK_MBUTTON | 0x000CU,
                                   MK_RBUTTON | 0x0004U,
                                   0U,
                                   0x000CU,
                                   0xFFECU};
    return random.Of(kFlags);
}

Operation DrawMouseMoveMessage(Random& random)
{
    const unsigned flags = DrawFlags(random);
    const int x = random.Pixel();
    const int y = random.Pixel();
    return MakeOperation(
        CallText("WM_MOUSEMOVE",
                 {static_cast<double>(flags), static_cast<double>(x), static_cast<double>(y)}),
        [=](Bench& bench) { ::SendMessageW(bench.control.m_hWnd, WM_MOUSEMOVE, flags, MAKELPARAM(x, y)); },
        [=](ModelControl& model) {
            if (model.has_window)
                model.OnMouseMove(flags, x, y, true);
        });
}

Operation DrawMouseMoveCall(Random& random)
{
    // With larger values the difference of two points would overflow int.
    constexpr int kFar = (1 << 30) - 64;
    constexpr int kPoints[] = {kFar, -kFar, 16777217, -16777217, 0, 99999, 720, -721};
    const unsigned flags = DrawFlags(random);
    const int x = random.Chance(50) ? random.Pixel() : random.Of(kPoints);
    const int y = random.Chance(50) ? random.Pixel() : random.Of(kPoints);
    return MakeOperation(
        CallText("OnMouseMove", {static_cast<double>(flags), static_cast<double>(x), static_cast<double>(y)}),
        [=](Bench& bench) { bench.control.OnMouseMove(flags, CPoint(x, y)); },
        [=](ModelControl& model) { model.OnMouseMove(flags, x, y, false); });
}

int DrawWheelDelta(Random& random)
{
    constexpr int kDeltas[] = {120, -120, 240, -240,  5,      -5,   9,     10,
                               -10, -9,   0,   32767, -32768, 1000, -1000, 1010};
    return random.Of(kDeltas);
}

Operation DrawWheelMessage(Random& random)
{
    const int delta = DrawWheelDelta(random);
    const int flags = random.Below(32);
    return MakeOperation(
        CallText("WM_MOUSEWHEEL", {static_cast<double>(flags), static_cast<double>(delta)}),
        [=](Bench& bench) {
            const WPARAM wparam =
                (static_cast<WPARAM>(static_cast<std::uint16_t>(delta)) << 16U) | static_cast<WPARAM>(flags);
            ::SendMessageW(bench.control.m_hWnd, WM_MOUSEWHEEL, wparam, MAKELPARAM(3, 4));
        },
        [=](ModelControl& model) {
            if (model.has_window)
                model.OnMouseWheel(delta, true);
        });
}

Operation DrawWheelCall(Random& random)
{
    const int delta = DrawWheelDelta(random);
    return MakeOperation(
        CallText("OnMouseWheel", {static_cast<double>(delta)}),
        [=](Bench& bench) { bench.control.OnMouseWheel(0, static_cast<short>(delta), CPoint(3, 4)); },
        [=](ModelControl& model) { model.OnMouseWheel(delta, false); });
}

Operation DrawSizeMessage(Random& random)
{
    constexpr int kSides[] = {0, 1, 2, 32767, 65535, 640};
    constexpr unsigned kTypes[] = {SIZE_RESTORED, SIZE_MINIMIZED, SIZE_MAXIMIZED, 3U, 4U, SIZE_RESTORED};
    const unsigned type = random.Of(kTypes);
    const int width = random.Chance(30) ? random.Of(kSides) : random.Between(1, 200);
    const int height = random.Chance(30) ? random.Of(kSides) : random.Between(1, 200);
    return MakeOperation(
        CallText("WM_SIZE",
                 {static_cast<double>(type), static_cast<double>(width), static_cast<double>(height)}),
        [=](Bench& bench) { ::SendMessageW(bench.control.m_hWnd, WM_SIZE, type, MAKELPARAM(width, height)); },
        [=](ModelControl& model) {
            if (!model.has_window)
                return;
            model.defaulted_messages.push_back(WM_SIZE);
            model.OnSize(type, width, height);
        });
}

Operation DrawSizeCall(Random& random)
{
    const auto type = static_cast<unsigned>(random.Chance(70) ? 0 : random.Integer());
    const int width = random.Integer();
    const int height = random.Integer();
    return MakeOperation(
        CallText("OnSize",
                 {static_cast<double>(type), static_cast<double>(width), static_cast<double>(height)}),
        [=](Bench& bench) { bench.control.OnSize(type, width, height); },
        [=](ModelControl& model) { model.OnSize(type, width, height); });
}

Operation DrawMoveWindow(Random& random)
{
    const int left = random.Between(-10, 10);
    const int top = random.Between(-10, 10);
    const int width = random.Chance(10) ? 0 : random.Between(1, 150);
    const int height = random.Chance(10) ? 0 : random.Between(1, 100);
    return MakeOperation(
        CallText("MoveWindow", {static_cast<double>(left), static_cast<double>(top),
                                static_cast<double>(width), static_cast<double>(height)}),
        [=](Bench& bench) {
            if (bench.control.m_hWnd != nullptr)
                bench.control.MoveWindow(CRect(left, top, left + width, top + height));
        },
        [=](ModelControl& model) {
            const bool same = width == model.outside.client_width && height == model.outside.client_height;
            if (!model.has_window || same)
                return;
            model.defaulted_messages.push_back(WM_SIZE);
            model.OnSize(SIZE_RESTORED, width, height);
        });
}

Operation DrawPaintMessage(Random&)
{
    return MakeOperation(
        "WM_PAINT()", [](Bench& bench) { ::SendMessageW(bench.control.m_hWnd, WM_PAINT, 0, 0); },
        [](ModelControl& model) {
            if (model.has_window)
                model.OnPaint();
        });
}

Operation DrawFrame(Random& random)
{
    constexpr std::clock_t kStarts[] = {0, 1, 123456, 5000000000};
    constexpr std::clock_t kSteps[] = {0,   1,   5,    17,   50,   99,  100,  101,        110,         111,
                                       124, 125, 166,  167,  199,  200, 201,  250,        333,         334,
                                       500, 999, 1000, 1001, 5000, -1,  -250, 2147483648, -2147483649, 0};
    const std::clock_t t0 = random.Of(kStarts);
    const std::clock_t t1 = t0 + random.Of(kSteps);
    const bool as_message = random.Chance(50);
    const auto id = static_cast<std::uint32_t>(random.Integer());
    Operation operation = MakeOperation(
        CallText(as_message ? "WM_TIMER" : "OnTimer",
                 {static_cast<double>(id), static_cast<double>(t0), static_cast<double>(t1)}),
        [=](Bench& bench) {
            if (bench.control.m_hWnd == nullptr)
                return;
            bench.ticks = {t0, t1};
            if (as_message)
                ::SendMessageW(bench.control.m_hWnd, WM_TIMER, id, 0);
            else
                bench.control.OnTimer(id);
        },
        [=](ModelControl& model) {
            if (model.has_window)
                model.OnTimer(t0, t1);
        });
    operation.draws_frame = true;
    return operation;
}

} // namespace

const std::vector<Kind>& MessageKinds()
{
    static const std::vector<Kind> kinds = {
        {30, DrawMouseMoveMessage}, {8, DrawMouseMoveCall}, {8, DrawWheelMessage},
        {3, DrawWheelCall},         {6, DrawSizeMessage},   {3, DrawSizeCall},
        {4, DrawMoveWindow},        {3, DrawPaintMessage},  {40, DrawFrame}};
    return kinds;
}

} // namespace karv_model
