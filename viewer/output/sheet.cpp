#include "viewer/output/sheet.h"

#include "viewer/output/png_image.h"
#include "viewer/text/text.h"

#include <algorithm>
#include <array>
#include <stdexcept>

namespace viewer
{

namespace
{

constexpr int kGap = 8;
constexpr int kTitleHeight = 36;
constexpr double kTitleSize = 18.0;
constexpr int kLabelHeight = 24;
constexpr double kLabelSize = 14.0;
constexpr int kMinCellSide = 16;

SheetLayout WithCell(int columns, PictureSize cell)
{
    SheetLayout layout;
    layout.columns = columns;
    layout.rows = (static_cast<int>(kStandardViews.size()) + columns - 1) / columns;
    layout.cell = cell;
    layout.whole = {columns * (cell.width + kGap) + kGap,
                    kTitleHeight + layout.rows * (cell.height + kLabelHeight + kGap)};
    return layout;
}

SheetLayout Within(int columns, PictureSize whole)
{
    SheetLayout layout = WithCell(columns, {0, 0});
    layout.cell = {(whole.width - layout.whole.width) / layout.columns,
                   (whole.height - layout.whole.height) / layout.rows};
    layout.whole = whole;
    return layout;
}

int ShorterSide(const SheetLayout& layout)
{
    return std::min(layout.cell.width, layout.cell.height);
}

} // namespace

SheetLayout LayOutSheet(const std::optional<PictureSize>& size)
{
    if (!size)
        return WithCell(5, {320, 240});
    SheetLayout best = Within(5, *size);
    for (const int columns : {4, 3, 2, 10, 1})
        if (const SheetLayout layout = Within(columns, *size); ShorterSide(layout) > ShorterSide(best))
            best = layout;
    if (ShorterSide(best) < kMinCellSide)
        throw std::runtime_error("--size: too small for a sheet of ten views");
    return best;
}

void WriteSheet(const std::string& path, const std::string& title, const SheetLayout& layout,
                const std::function<Picture(StandardView)>& draw)
{
    PngImage image(layout.whole.width, layout.whole.height);
    image.DrawText(OneLine(title), layout.whole.width / 2.0, kTitleHeight - kTitleSize / 2, kTitleSize,
                   layout.whole.width - 2.0 * kGap);
    for (std::size_t i = 0; i < kStandardViews.size(); ++i) {
        const int column = static_cast<int>(i) % layout.columns;
        const int row = static_cast<int>(i) / layout.columns;
        const int left = kGap + column * (layout.cell.width + kGap);
        const int top = kTitleHeight + row * (layout.cell.height + kLabelHeight + kGap);
        image.Draw(draw(kStandardViews.at(i)), left, top);
        image.DrawText(std::string(NameOf(kStandardViews.at(i))), left + layout.cell.width / 2.0,
                       top + layout.cell.height + kLabelHeight - kLabelSize / 2, kLabelSize,
                       layout.cell.width);
    }
    image.WritePng(path);
}

} // namespace viewer
