// What old and sloppy programs write.

#include "tests/viewer/import/dxf/dxf_fixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace viewer
{
namespace
{

using testing::HasSubstr;
using testing::SizeIs;

class DxfVersions : public DxfTest
{
};

TEST_F(DxfVersions, KeywordsMayBeInLowerCase)
{
    const Model model = ImportText(
        Lines("0 section 2 header 9 $insunits 70 6 0 endsec 0 section 2 entities 0 line 8 Wall 11 1 0 "
              "Polyline 66 1 0 vertex 10 0 0 vertex 10 1 0 seqend 0 endsec 0 eof"));
    ASSERT_EQ(model.pieces.size(), 2U);
    EXPECT_EQ(model.pieces[0].name, "Wall");
    EXPECT_EQ(model.meters_per_unit, 1.0);
}

TEST_F(DxfVersions, FileMayEndBehindItsEntities)
{
    const std::string entities = Lines("0 SECTION 2 ENTITIES 0 LINE 11 1 0 ENDSEC");
    EXPECT_EQ(ImportText(entities).pieces.size(), 1U);
    EXPECT_EQ(ImportText(entities + "\n\r\n").pieces.size(), 1U);
    EXPECT_EQ(ImportText(entities + Lines("0 SECTION 2 OBJECTS 0 DICTIONARY 5")).pieces.size(), 1U);
    EXPECT_EQ(ImportText(entities + "0\nEO").pieces.size(), 1U);
    EXPECT_THAT(ErrorOf(Lines("0 SECTION 2 ENTITIES 0 LINE 11 1")), HasSubstr("truncated"));
    EXPECT_THAT(ErrorOf(entities + Lines("0 SECTION 2 BLOCKS 0 BLOCK 2 b")), HasSubstr("truncated"))
        << "blocks are drawn, too";
}

TEST_F(DxfVersions, WhatFollowsTheEndIsNotLookedAt)
{
    EXPECT_EQ(ImportText(Drawing("0 LINE 11 1") + "\x1A garbage \x01\n\n").pieces.size(), 1U);
}

TEST_F(DxfVersions, LinesInSpaceOfTheOldestDrawingsAreDrawn)
{
    const std::vector<Segment> lines = LinesOf("0 3DLINE 10 1 20 2 30 3 11 4 21 5 31 6");
    ASSERT_THAT(lines, SizeIs(1));
    ExpectLine(lines[0], {1, 2, 3}, {4, 5, 6});
}

TEST_F(DxfVersions, ClosedSplineWithoutKnotsReturnsToItsStart)
{
    const std::vector<Segment> lines = LinesOf("0 SPLINE 70 3 71 3 10 0 20 0 10 4 20 0 10 4 20 4 10 0 20 4");
    ASSERT_GT(lines.size(), 4U);
    ExpectNear(lines.front().from, lines.back().to);
    // A uniform cubic begins at (p0 + 4 p1 + p2) / 6.
    ExpectNear(lines.front().from, {20.0 / 6.0, 4.0 / 6.0, 0});
}

TEST_F(DxfVersions, KnotsMayLackTheFirstAndTheLast)
{
    // Some programs leave out the two knots that do not matter.
    ExpectLine(LinesOf("0 SPLINE 71 1 40 0 40 1 10 0 20 0 10 1 20 1").at(0), {0, 0, 0}, {1, 1, 0});
}

} // namespace
} // namespace viewer
