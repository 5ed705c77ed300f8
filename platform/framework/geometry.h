// Points and rectangles in pixels, as the window framework passes them.
#pragma once

#include "platform/winsys/winsys.h"

/// A point in pixels.
class CPoint : public POINT
{
  public:
    CPoint() noexcept : POINT() {}
    CPoint(int x_in, int y_in) noexcept : POINT()
    {
        x = x_in;
        y = y_in;
    }
    explicit CPoint(const POINT& point) noexcept : POINT(point) {}
};

/// A rectangle in pixels; right and bottom are exclusive.
class CRect : public RECT
{
  public:
    CRect() noexcept : RECT() {}
    CRect(int left_in, int top_in, int right_in, int bottom_in) noexcept : RECT()
    {
        left = left_in;
        top = top_in;
        right = right_in;
        bottom = bottom_in;
    }
    explicit CRect(const RECT& rect) noexcept : RECT(rect) {}

    /// Width and height; they wrap around if the difference exceeds 32 bits.
    [[nodiscard]] int Width() const noexcept { return Difference(right, left); }
    [[nodiscard]] int Height() const noexcept { return Difference(bottom, top); }

  private:
    [[nodiscard]] static int Difference(LONG to, LONG from) noexcept
    {
        return static_cast<int>(static_cast<unsigned int>(to) - static_cast<unsigned int>(from));
    }
};
