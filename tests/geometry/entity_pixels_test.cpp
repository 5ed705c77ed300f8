// Entities drawn into a real context, checked by pixels.
#include "tests/geometry/shapes.h"

#include "platform/host/db/entities.h"
#include "platform/winsys/opengl.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/gl_test_window.h"
#include "tests/support/trace_recording.h"

#include <gmock/gmock.h>

#include <array>
#include <vector>

using karv_test::EntityOf;
using karv_test::Face;
using karv_test::IsNear;
using karv_test::kBlack;
using karv_test::kRed;
using karv_test::kRedPixel;
using karv_test::Lines;
using karv_test::LShape;
using karv_test::Picture;
using karv_test::Square;
using karv_test::TraceRecording;
using karv_test::Triangle;
using testing::ElementsAre;
using testing::IsEmpty;
using Entity = KARVGraphicalEntity;

namespace
{

class EntityShown : public karv_test::GlTest
{
};

} // namespace

TEST_F(EntityShown, EveryFaceOfFourCornersOrMoreHasItsOwnList)
{
    const Entity entity({Square(), Triangle(), LShape(), Square()}, Entity::EntityType0, kRed);
    EXPECT_NE(entity.faces.at(0).displayList, 0U);
    EXPECT_EQ(entity.faces.at(1).displayList, 0U);
    EXPECT_NE(entity.faces.at(2).displayList, 0U);
    EXPECT_NE(entity.faces.at(3).displayList, 0U);
    EXPECT_NE(entity.faces.at(0).displayList, entity.faces.at(2).displayList);
    EXPECT_NE(entity.faces.at(0).displayList, entity.faces.at(3).displayList);
}

TEST_F(EntityShown, ConcaveFaceIsDrawnRightThroughItsList)
{
    Entity entity = EntityOf(LShape());
    window_.BeginPicture(2.0, 2.0);
    entity.DrawObjectQuads();
    const Picture picture = window_.Read();
    EXPECT_TRUE(IsNear(picture.At(16, 16), kRedPixel));
    EXPECT_TRUE(IsNear(picture.At(48, 16), kRedPixel));
    EXPECT_TRUE(IsNear(picture.At(16, 48), kRedPixel));
    EXPECT_TRUE(IsNear(picture.At(48, 48), kBlack));
    EXPECT_TRUE(IsNear(picture.At(38, 40), kBlack));
}

TEST_F(EntityShown, ConcaveFaceWithoutAListFillsItsNotch)
{
    // The counterpart of the list: the same face drawn as a fan.
    Entity entity = EntityOf(LShape());
    entity.faces.at(0).displayList = 0;
    window_.BeginPicture(2.0, 2.0);
    entity.DrawObjectQuads();
    // (38, 40) is (1.19, 1.25): in the notch, and in the fan's triangle (2, 0), (1, 1), (1, 2).
    EXPECT_TRUE(IsNear(window_.Read().At(38, 40), kRedPixel));
}

TEST_F(EntityShown, SameListDrawsInAColorSetLater)
{
    Entity entity = EntityOf(Square(2.0));
    entity.SetColor(karv_test::kGreen);
    window_.BeginPicture(2.0, 2.0);
    entity.DrawObjectQuads();
    EXPECT_TRUE(IsNear(window_.Read().At(32, 32), {0, 255, 0}));
}

TEST_F(EntityShown, CopyOutlivesItsSourceAndStillDraws)
{
    auto source = std::make_unique<Entity>(EntityOf(Square(2.0)));
    Entity copy = *source;
    EXPECT_EQ(copy.faces.at(0).displayList, source->faces.at(0).displayList);
    source.reset();
    window_.BeginPicture(2.0, 2.0);
    copy.DrawObjectQuads();
    EXPECT_TRUE(IsNear(window_.Read().At(32, 32), kRedPixel));
}

TEST_F(EntityShown, MovedFacesKeepTheirList)
{
    Entity source = EntityOf(Square());
    const GLuint list = source.faces.at(0).displayList;
    const Entity moved = std::move(source);
    EXPECT_EQ(moved.faces.at(0).displayList, list);
}

TEST_F(EntityShown, OpensNoTraceEntryOfItsOwn)
{
    KARVGLFace square = Square();
    Entity entity;
    const TraceRecording trace;
    entity.TesselateFace(square);
    EXPECT_THAT(trace.Listing(), IsEmpty());
    EXPECT_NE(square.displayList, 0U);
}

TEST(DrawFaces, FallbackIsNestedInTheTrace)
{
    Entity entity = Lines({});
    const TraceRecording trace;
    entity.DrawObjectQuads();
    EXPECT_THAT(trace.Listing(), ElementsAre("> KARVGraphicalEntity::DrawObjectQuads",
                                             "> KARVGraphicalEntity::DrawObjectLines",
                                             "< KARVGraphicalEntity::DrawObjectLines",
                                             "< KARVGraphicalEntity::DrawObjectQuads"));
}

TEST_F(EntityShown, LineEntityDrawsItsColorThroughTheFallback)
{
    AcDbLine line({0.0, 1.0, 0.0}, {2.0, 1.0, 0.0});
    line.setColorIndex(kRed);
    Entity entity(&line, Entity::EntityType0);
    window_.BeginPicture(2.0, 2.0);
    entity.DrawObjectQuads();
    const Picture picture = window_.Read();
    // The line lies at the middle, y = 1, on the boundary between rows 31 and 32.
    const bool lower = IsNear(picture.At(20, 31), {255, 0, 0});
    const bool upper = IsNear(picture.At(20, 32), {255, 0, 0});
    EXPECT_TRUE(lower || upper);
    EXPECT_TRUE(IsNear(picture.At(20, 10), {0, 0, 0}));
}

TEST_F(EntityShown, FacesOfThreeFourAndFiveCornersFillTheirArea)
{
    // Side by side in a 3 x 1 strip, the last two without display lists.
    Entity entity(
        {Face({{0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}}),
         Face({{1.0, 0.0, 0.0}, {2.0, 0.0, 0.0}, {2.0, 1.0, 0.0}, {1.0, 1.0, 0.0}}),
         Face({{2.0, 0.0, 0.0}, {3.0, 0.0, 0.0}, {3.0, 0.5, 0.0}, {2.5, 1.0, 0.0}, {2.0, 1.0, 0.0}})},
        Entity::EntityType0, kRed);
    entity.faces.at(1).displayList = 0;
    entity.faces.at(2).displayList = 0;
    window_.BeginPicture(3.0, 1.0);
    entity.DrawObjectQuads();
    const Picture picture = window_.Read();
    EXPECT_TRUE(IsNear(picture.At(3, 10), {255, 0, 0}));
    EXPECT_TRUE(IsNear(picture.At(18, 60), {0, 0, 0}));
    EXPECT_TRUE(IsNear(picture.At(32, 60), {255, 0, 0}));
    EXPECT_TRUE(IsNear(picture.At(45, 60), {255, 0, 0}));
    EXPECT_TRUE(IsNear(picture.At(62, 62), {0, 0, 0}));
}
