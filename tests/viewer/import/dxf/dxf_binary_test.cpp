// Binary drawings: the same groups as in a text file, with values of fixed types.

#include "tests/viewer/import/dxf/dxf_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <sstream>

namespace viewer
{
namespace
{

using testing::AllOf;
using testing::HasSubstr;
using testing::SizeIs;
using testing::StartsWith;

const std::string kBinaryStart("Drawing Binary DXF\r\n\x1A\0", 22);

std::string BytesOf(std::uint64_t value, std::size_t count)
{
    std::string bytes;
    for (std::size_t i = 0; i < count; ++i)
        bytes += static_cast<char>(value >> (8U * i) & 0xFFU);
    return bytes;
}

/// The words of a text drawing as binary groups. Codes have 2 bytes, or 1 with an escape for higher ones.
std::string Binary(const std::string& text, std::size_t code_bytes = 2)
{
    std::istringstream words(text);
    std::string bytes = kBinaryStart;
    int code = 0;
    for (std::string value; words >> code >> value;) {
        const auto bits = static_cast<std::uint64_t>(code);
        if (code_bytes == 1 && code >= 255)
            bytes += '\xFF' + BytesOf(bits, 2);
        else
            bytes += BytesOf(bits, code_bytes);
        if ((code >= 10 && code <= 59) || (code >= 210 && code <= 239)) {
            const double number = std::stod(value);
            std::uint64_t image = 0;
            std::memcpy(&image, &number, sizeof image);
            bytes += BytesOf(image, 8);
        } else if ((code >= 60 && code <= 79) || (code >= 270 && code <= 289)) {
            bytes += BytesOf(static_cast<std::uint64_t>(std::stoll(value)), 2);
        } else if ((code >= 90 && code <= 99) || (code >= 420 && code <= 429)) {
            bytes += BytesOf(static_cast<std::uint64_t>(std::stoll(value)), 4);
        } else if (code >= 290 && code <= 299) {
            bytes += BytesOf(static_cast<std::uint64_t>(std::stoll(value)), 1);
        } else if (code >= 310 && code <= 319) {
            bytes += static_cast<char>(value.size()) + value;
        } else {
            bytes += value + '\0';
        }
    }
    return bytes;
}

class DxfBinary : public DxfTest
{
};

const char* const kEntities =
    "0 LINE 8 a 62 -3 10 0.1 20 1e-300 30 -7.25 11 1 21 2 31 3 0 LWPOLYLINE 90 2 70 1 10 0 "
    "20 0 10 1 20 1 0 CIRCLE 40 2.5 310 picture 290 1 420 255 1001 APP 1070 -5";

TEST_F(DxfBinary, BinaryDrawingIsThatOfItsText)
{
    const std::string text = Drawing(kEntities, "0 BLOCK 2 b 0 LINE 11 1 0 ENDBLK", "0 LAYER 2 a 70 0 62 3");
    const Model expected = ImportText(text);
    for (const std::size_t code_bytes : {std::size_t{2}, std::size_t{1}}) {
        // Code 1070 has a value of 2 bytes.
        std::string bytes = Binary(text, code_bytes);
        const std::size_t extended = bytes.find("-5", 0);
        ASSERT_NE(extended, std::string::npos);
        bytes.replace(extended, 3, BytesOf(0xFFFB, 2));
        const Model model = ImportText(bytes);
        ASSERT_EQ(model.pieces.size(), expected.pieces.size());
        for (std::size_t i = 0; i < model.pieces.size(); ++i) {
            EXPECT_EQ(model.pieces[i].name, expected.pieces[i].name);
            EXPECT_EQ(model.pieces[i].color, expected.pieces[i].color);
            ASSERT_EQ(model.pieces[i].lines.size(), expected.pieces[i].lines.size());
            for (std::size_t k = 0; k < model.pieces[i].lines.size(); ++k) {
                EXPECT_EQ(model.pieces[i].lines[k].from, expected.pieces[i].lines[k].from);
                EXPECT_EQ(model.pieces[i].lines[k].to, expected.pieces[i].lines[k].to);
            }
        }
    }
}

TEST_F(DxfBinary, TextsOfABinaryDrawingAreShownWithAllTheirCharacters)
{
    // Words of `Binary` hold no blanks.
    const std::string drawing = Drawing("0 TEXT 40 10 1 $ 0 MTEXT 20 50 40 10 1 $");
    const auto with_value = [](std::string bytes, const std::string& place, const std::string& text) {
        for (std::size_t at = bytes.find(place); at != std::string::npos; at = bytes.find(place))
            bytes.replace(at + 1, 1, text);
        return bytes;
    };
    for (const std::string& value : {std::string("  H  H"), std::string(1500, 'H')}) {
        const auto letters = static_cast<std::size_t>(std::count(value.begin(), value.end(), 'H'));
        const Model expected = ImportText(with_value(drawing, "\n$\n", value));
        ASSERT_EQ(expected.pieces.size(), 1U);
        for (const std::size_t code_bytes : {std::size_t{2}, std::size_t{1}}) {
            const std::string bytes = Binary(drawing, code_bytes);
            const std::string place = code_bytes == 2 ? std::string("\0$\0", 3) : std::string("\1$\0", 3);
            const Model model = ImportText(with_value(bytes, place, value));
            ASSERT_EQ(model.pieces.size(), 1U);
            EXPECT_EQ(model.Extents().min, expected.Extents().min);
            EXPECT_EQ(model.Extents().max, expected.Extents().max);
            EXPECT_THAT(model.pieces[0].lines, SizeIs(expected.pieces[0].lines.size()));
            EXPECT_THAT(model.pieces[0].lines, SizeIs(24 * letters))
                << "an H has twelve corners, and both texts are shown";
        }
    }
}

TEST_F(DxfBinary, BinaryFileCutAnywhereIsRefused)
{
    const std::string whole = Binary(Drawing("0 LINE 8 a 11 1 0 CIRCLE 40 2"));
    ASSERT_EQ(ImportText(whole).pieces.size(), 2U);
    const std::size_t entities_end = whole.find("ENDSEC");
    for (std::size_t size = kBinaryStart.size(); size < entities_end; ++size)
        EXPECT_THAT(ErrorOf(whole.substr(0, size)),
                    AllOf(StartsWith("truncated: it ends after"), HasSubstr("groups")))
            << size;
}

TEST_F(DxfBinary, DamagedGroupsAreRefusedInOneLine)
{
    const std::string start = Binary(Lines("0 SECTION 2 ENTITIES 0 LINE"));
    EXPECT_EQ(ErrorOf(start + BytesOf(85, 2)), "line 7: '85' is no group code");
    EXPECT_EQ(ErrorOf(start + BytesOf(0xFFF0, 2)), "line 7: '-16' is no group code");
    EXPECT_EQ(ErrorOf(start + BytesOf(10, 2) + BytesOf(0x7FF0000000000000, 8)),
              "line 8: 'inf' is no finite number");
    EXPECT_THAT(ErrorOf(start + BytesOf(8, 2) + std::string(5000, 'n') + '\0'),
                HasSubstr("longer than 1000"));
    EXPECT_THAT(ErrorOf(start + BytesOf(8, 2) + std::string(5000, 'n')), StartsWith("truncated"));
    EXPECT_EQ(ErrorOf("Drawing Binary DXF\n"), "is a damaged binary DXF file");
}

} // namespace
} // namespace viewer
