// Entities and OpenGL: the calls that they never make, and the faults that need a recorded library.
#include "tests/geometry/shapes.h"

#include "geometry/KARVGraphicalEntity.h"
#include "platform/host/cm/color.h"
#include "platform/host/db/entities.h"
#include "platform/modeler/primitives.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/modeler_hooks.h"
#include "tests/support/trace_recording.h"

#include <gmock/gmock.h>

#include <set>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

using karv_test::BrokenLine;
using karv_test::EntityOf;
using karv_test::Face;
using karv_test::FromFaces;
using karv_test::GlRecording;
using karv_test::kRed;
using karv_test::TraceRecording;
using karv_test::Triangle;
using testing::IsEmpty;
using Entity = KARVGraphicalEntity;
using karv_test::Square;
using karv_test::ThrowAt;
using testing::SizeIs;

TEST(Entity, LineIsTakenWithoutAGlCall)
{
    AcDbLine line({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
    const GlRecording recording;
    {
        const Entity entity(&line, Entity::EntityType0);
    }
    EXPECT_THAT(recording.Listing(), IsEmpty());
}

TEST(Entity, FacesOfUpToThreeCornersAskForNoList)
{
    const GlRecording recording;
    const Entity entity =
        FromFaces({Face({}), Face({{1.0, 0.0, 0.0}}), Face({{1.0, 0.0, 0.0}, {2.0, 0.0, 0.0}}), Triangle()});
    EXPECT_THAT(recording.Listing(), IsEmpty());
    EXPECT_EQ(entity.faces.size(), 4U);
}

TEST(Entity, CopiesAndDestructionIssueNoGlCall)
{
    const GlRecording recording;
    {
        const Entity entity = FromFaces({Triangle()});
        Entity copy = entity;
        copy = entity;
        const Entity moved = std::move(copy);
    }
    EXPECT_THAT(recording.Listing(), IsEmpty());
}

TEST(FaceNormal, IsOneTracedOperationAndNoGlCall)
{
    KARVGraphicalEntity entity;
    const karv_test::TraceRecording trace;
    const karv_test::GlRecording recording;
    (void)entity.FindFaceNormal({{0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}});
    EXPECT_THAT(trace.Listing(), testing::ElementsAre("> KARVGraphicalEntity::FindFaceNormal",
                                                      "< KARVGraphicalEntity::FindFaceNormal"));
    EXPECT_THAT(recording.Listing(), testing::IsEmpty());
}

TEST(EntityFaults, EveryOperationThatCanFailReportsALineOfItsOwn)
{
    Entity drawn;
    drawn.lineVertices = {{0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}};
    AModeler::Body box = AModeler::MakeBox({0, 0, 0}, {1, 1, 1});
    BrokenLine line;
    const TraceRecording trace;
    {
        const auto hook = ThrowAt("glGenLists", 1, 42);
        const Entity from_faces = EntityOf(Square());
    }
    const Entity from_line(&line, Entity::EntityType0);
    {
        const karv_test::PlaneHook hook([](int) { throw 42; });
        const Entity from_body(&box, Entity::EntityType0, kRed);
    }
    {
        const auto hook = ThrowAt("glColor3f", 1, 42);
        drawn.DrawObjectLines();
    }
    {
        const auto hook = ThrowAt("glColor4f", 1, 42);
        drawn.DrawObjectQuads();
    }
    const std::vector<std::string> faults = trace.Faults();
    ASSERT_THAT(faults, SizeIs(5));
    EXPECT_THAT(std::set<std::string>(faults.begin(), faults.end()), SizeIs(5));
}

TEST(EntityFaults, BothStepsOfASolidAreOneOperationWithOneLine)
{
    AModeler::Body box = AModeler::MakeBox({0, 0, 0}, {1, 1, 1});
    const TraceRecording trace;
    {
        const karv_test::PlaneHook hook([](int) { throw 42; });
        const Entity entity(&box, Entity::EntityType0, kRed);
    }
    {
        const karv_test::EdgesHook hook([](bool, bool, karv_test::EdgesHook::Edges&) { throw 42; });
        const Entity entity(&box, Entity::EntityType0, kRed);
    }
    ASSERT_THAT(trace.Faults(), SizeIs(2));
    EXPECT_EQ(trace.Faults()[0], trace.Faults()[1]);
}
