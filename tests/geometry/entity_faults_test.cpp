// Faults while an entity is built: the state that the entity keeps, and the line that each operation reports.
#include "tests/geometry/shapes.h"

#include "platform/host/db/entities.h"
#include "platform/modeler/primitives.h"
#include "tests/support/trace_recording.h"

#include <gmock/gmock.h>

#include <stdexcept>

using karv_test::BrokenLine;
using karv_test::EntityOf;
using karv_test::TraceRecording;
using testing::ElementsAre;
using testing::IsEmpty;
using Entity = KARVGraphicalEntity;

TEST(EntityFaults, HostEntityThatFailsLeavesCategoryAndColorAlone)
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

TEST(EntityFaults, FaultedEntityCanBeCopiedAndAssignedOver)
{
    BrokenLine line;
    Entity entity(&line, Entity::EntityType7);
    const Entity copy = entity;
    EXPECT_EQ(copy.entityType, Entity::EntityType7);
    const Entity triangle = EntityOf(karv_test::Triangle());
    entity = triangle;
    // The box and its flag are copied too: the corners are (0, 0, 0), (1, 0, 0), (0, 1, 0).
    EXPECT_TRUE(entity.extentsValid);
    EXPECT_EQ(entity.minExtent, KARVGLVertex());
    EXPECT_EQ(entity.maxExtent, KARVGLVertex(1.0, 1.0, 0.0));
    entity = copy;
    EXPECT_FALSE(entity.extentsValid);
    EXPECT_EQ(entity.maxExtent, KARVGLVertex());
}
