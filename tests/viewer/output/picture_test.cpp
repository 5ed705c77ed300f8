#include "tests/viewer/test_support.h"
#include "viewer/output/png_image.h"
#include "viewer/output/sheet.h"
#include "viewer/text/file_error.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cairo.h>

#include <algorithm>
#include <cstring>
#include <filesystem>

namespace viewer
{
namespace
{

using testing::ElementsAre;
using testing::HasSubstr;

class PictureFile : public ViewerTest
{
  protected:
    static Picture Colored(int width, int height, std::uint32_t color)
    {
        Picture picture(width, height);
        std::fill(picture.pixels.begin(), picture.pixels.end(), color);
        return picture;
    }

    /// A pixel of a PNG file.
    [[nodiscard]] std::uint32_t PixelOf(const std::string& path, int column, int row) const
    {
        cairo_surface_t* surface = cairo_image_surface_create_from_png(path.c_str());
        const unsigned char* data = cairo_image_surface_get_data(surface);
        const std::ptrdiff_t stride = cairo_image_surface_get_stride(surface);
        std::uint32_t pixel = 0;
        std::memcpy(&pixel, data + row * stride + std::ptrdiff_t{column} * 4, sizeof pixel);
        cairo_surface_destroy(surface);
        return pixel & 0xFFFFFFU;
    }
};

TEST_F(PictureFile, HoldsThePixelsInTheirPlaces)
{
    Picture picture(3, 2);
    picture.pixels = {0x112233, 0x445566, 0x778899, 0xAABBCC, 0xDDEEFF, 0x010203};
    WritePng(picture, PathOf("a.png"));
    EXPECT_EQ(SizeOfPng(PathOf("a.png")), (PictureSize{3, 2}));
    EXPECT_EQ(PixelOf(PathOf("a.png"), 0, 0), 0x112233U);
    EXPECT_EQ(PixelOf(PathOf("a.png"), 2, 0), 0x778899U);
    EXPECT_EQ(PixelOf(PathOf("a.png"), 0, 1), 0xAABBCCU);
    EXPECT_EQ(PixelOf(PathOf("a.png"), 2, 1), 0x010203U);
}

TEST_F(PictureFile, TakesThePlaceOfAnOlderOneAndLeavesNothingElse)
{
    Write("a.png", "old");
    WritePng(Colored(4, 5, 0xFF0000), PathOf("a.png"));
    EXPECT_EQ(SizeOfPng(PathOf("a.png")), (PictureSize{4, 5}));
    EXPECT_THAT(Names(), ElementsAre("a.png"));
}

TEST_F(PictureFile, FolderThatIsNotThereIsRefused)
{
    try {
        WritePng(Colored(1, 1, 0), PathOf("none/a.png"));
        FAIL() << "written into a folder that is not there";
    } catch (const FileError& error) {
        EXPECT_THAT(error.what(), HasSubstr("none/a.png: No such file or directory"));
    }
    EXPECT_TRUE(Names().empty());
}

TEST_F(PictureFile, FolderIsNotReplaced)
{
    std::filesystem::create_directory(PathOf("a.png"));
    EXPECT_THROW(WritePng(Colored(1, 1, 0), PathOf("a.png")), FileError);
    EXPECT_TRUE(std::filesystem::is_directory(PathOf("a.png")));
    EXPECT_THAT(Names(), ElementsAre("a.png"));
}

TEST_F(PictureFile, LinkKeepsPointingToTheFileThatIsReplaced)
{
    Write("real.png", "old");
    std::filesystem::create_symlink(PathOf("real.png"), PathOf("link.png"));
    WritePng(Colored(2, 2, 0), PathOf("link.png"));
    EXPECT_TRUE(std::filesystem::is_symlink(PathOf("link.png")));
    EXPECT_EQ(SizeOfPng(PathOf("real.png")), (PictureSize{2, 2}));
}

TEST(SheetLayoutTest, WithoutASizeItHasFiveColumnsOfTwoViews)
{
    const SheetLayout layout = LayOutSheet(std::nullopt);
    EXPECT_EQ(layout.columns, 5);
    EXPECT_EQ(layout.rows, 2);
    EXPECT_EQ(layout.cell, (PictureSize{320, 240}));
}

TEST(SheetLayoutTest, EveryCellLiesInsideASheetOfAnyShape)
{
    for (const PictureSize size : {PictureSize{1024, 768}, PictureSize{3000, 300}, PictureSize{300, 3000}}) {
        const SheetLayout layout = LayOutSheet(size);
        EXPECT_EQ(layout.whole, size);
        EXPECT_GE(layout.columns * layout.rows, 10);
        EXPECT_LE(layout.columns * layout.cell.width, size.width);
        EXPECT_LE(layout.rows * layout.cell.height, size.height);
        EXPECT_GT(std::min(layout.cell.width, layout.cell.height), 100);
    }
}

TEST(SheetLayoutTest, SizeWithoutRoomForTenViewsIsRefused)
{
    EXPECT_THROW(static_cast<void>(LayOutSheet(PictureSize{60, 60})), std::runtime_error);
}

class SheetFile : public PictureFile
{
};

TEST_F(SheetFile, AsksForEveryViewOnceInOrderAndPutsItIntoItsCell)
{
    const SheetLayout layout = LayOutSheet(std::nullopt);
    std::vector<StandardView> asked;
    WriteSheet(PathOf("s.png"), "title", layout, [&](StandardView view) {
        asked.push_back(view);
        return Colored(320, 240, static_cast<std::uint32_t>(asked.size()));
    });
    EXPECT_THAT(asked, testing::ElementsAreArray(kStandardViews));
    EXPECT_EQ(SizeOfPng(PathOf("s.png")), layout.whole);
    // Columns of 320 with gaps of 8; a title of 36, then rows of 240 + 24 + 8. The middle of the first and of
    // the last cell:
    EXPECT_EQ(PixelOf(PathOf("s.png"), 8 + 160, 36 + 120), 1U);
    EXPECT_EQ(PixelOf(PathOf("s.png"), 8 + 4 * 328 + 160, 36 + 272 + 120), 10U);
}

TEST_F(SheetFile, TitleThatIsNotValidTextIsStillWritten)
{
    const SheetLayout layout = LayOutSheet(std::nullopt);
    const Picture cell = Colored(320, 240, 0);
    WriteSheet(PathOf("s.png"), "b\xFFroken \xC3", layout, [&](StandardView) { return cell; });
    EXPECT_EQ(SizeOfPng(PathOf("s.png")), layout.whole);
}

TEST_F(SheetFile, NothingIsWrittenWhereDrawingFails)
{
    const auto fail = [](StandardView) -> Picture { throw std::runtime_error("no frame"); };
    EXPECT_THROW(WriteSheet(PathOf("s.png"), "", LayOutSheet(std::nullopt), fail), std::runtime_error);
    EXPECT_TRUE(Names().empty());
}

} // namespace
} // namespace viewer
