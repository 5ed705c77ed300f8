// Faults on the way to an entity: what the entity keeps, and where each operation says that it stands.
#include "tests/geometry/shapes.h"

#include "platform/host/db/entities.h"
#include "platform/modeler/ready_bodies.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/modeler_hooks.h"
#include "tests/support/trace_recording.h"

#include <gmock/gmock.h>

#include <set>
#include <stdexcept>
#include <string>
#include <vector>

using karv_test::EntityOf;
using karv_test::kRed;
using karv_test::Square;
using karv_test::ThrowAt;
using karv_test::TraceRecording;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

using Entity = KARVGraphicalEntity;

namespace
{

/// A line of the host's that cannot tell its class.
class BrokenLine : public AcDbLine
{
  public:
    BrokenLine() : AcDbLine({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}) { setColorIndex(kRed); }
    [[nodiscard]] AcRxClass* isA() const override { throw std::runtime_error("the host fails"); }
};

} // namespace

TEST(EntityFaults, HostEntityThatFailsLeavesCategoryAndColourAlone)
{
    BrokenLine line;
    Entity entity(&line, Entity::EntityType7);
    EXPECT_EQ(entity.GetEntityType(), Entity::EntityType7);
    EXPECT_EQ(entity.color, KARVGLVertex(1.0, 0.0, 0.0));
    EXPECT_EQ(entity.alpha, 1.0F);
    EXPECT_THAT(entity.lineVertices, IsEmpty());
    EXPECT_FALSE(entity.extentsValid);
}

TEST(EntityFaults, HostEntityThatFailsIsReportedByTheConversionAlone)
{
    BrokenLine line;
    const TraceRecording trace;
    const Entity entity(&line, Entity::EntityType7);
    EXPECT_THAT(trace.Listing(),
                ElementsAre("> KARVGraphicalEntity::KARVGraphicalEntity",
                            "> KARVGraphicalEntity::CreateGLCache", "< KARVGraphicalEntity::CreateGLCache",
                            R"(! .\KARVGraphicalEntity.cpp)", "< KARVGraphicalEntity::KARVGraphicalEntity"));
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
    // Solids have a source of their own, whose lines are counted on from 3000.
    EXPECT_THAT(faults[2], testing::MatchesRegex(R"(.*:3[0-9][0-9][0-9])"));
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

TEST(EntityFaults, FaultedEntityCanBeCopiedAndAssignedOver)
{
    BrokenLine line;
    Entity entity(&line, Entity::EntityType7);
    const Entity copy = entity;
    EXPECT_EQ(copy.entityType, Entity::EntityType7);
    const Entity triangle = EntityOf(karv_test::Triangle());
    entity = triangle;
    // The box goes over too, with the mark that it is one: the corners are (0, 0, 0), (1, 0, 0), (0, 1, 0).
    EXPECT_TRUE(entity.extentsValid);
    EXPECT_EQ(entity.minExtent, KARVGLVertex());
    EXPECT_EQ(entity.maxExtent, KARVGLVertex(1.0, 1.0, 0.0));
    entity = copy;
    EXPECT_FALSE(entity.extentsValid);
    EXPECT_EQ(entity.maxExtent, KARVGLVertex());
}
