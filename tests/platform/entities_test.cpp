#include "platform/host/db/entities.h"

#include <gtest/gtest.h>

#include <array>

namespace
{

TEST(Entities, NewEntityTakesTheColourOfItsLayer)
{
    EXPECT_EQ(AcDbEntity().colorIndex(), 256);
    EXPECT_EQ(AcDbLine().colorIndex(), 256);
}

TEST(Entities, ColourIndexIsKeptAsGiven)
{
    AcDbLine line;
    for (const Adesk::UInt16 index : std::array<Adesk::UInt16, 6>{0, 1, 255, 256, 257, 65535}) {
        line.setColorIndex(index);
        EXPECT_EQ(line.colorIndex(), index);
    }
}

TEST(Entities, LineIsALineACurveAndAnEntity)
{
    const AcDbLine line;
    EXPECT_EQ(line.isA(), AcDbLine::desc());
    EXPECT_TRUE(line.isKindOf(AcDbLine::desc()));
    EXPECT_TRUE(line.isKindOf(AcDbCurve::desc()));
    EXPECT_TRUE(line.isKindOf(AcDbEntity::desc()));
    EXPECT_TRUE(line.isKindOf(AcRxObject::desc()));
    EXPECT_FALSE(line.isKindOf(AcDbCircle::desc()));
}

TEST(Entities, CircleAndPlainEntitiesAreNoLines)
{
    EXPECT_FALSE(AcDbCircle().isKindOf(AcDbLine::desc()));
    EXPECT_FALSE(AcDbCurve().isKindOf(AcDbLine::desc()));
    EXPECT_FALSE(AcDbEntity().isKindOf(AcDbLine::desc()));
    EXPECT_TRUE(AcDbCircle().isKindOf(AcDbCurve::desc()));
}

TEST(Entities, ClassDerivedFromALineIsALine)
{
    class Leader : public AcDbLine
    {
      public:
        [[nodiscard]] AcRxClass* isA() const override
        {
            static AcRxClass description(L"Leader", AcDbLine::desc());
            return &description;
        }
    };
    const Leader leader;
    EXPECT_TRUE(leader.isKindOf(AcDbLine::desc()));
    EXPECT_NE(leader.isA(), AcDbLine::desc());
}

TEST(Entities, DescriptionsTellTheirNames)
{
    EXPECT_STREQ(AcRxObject::desc()->name(), L"AcRxObject");
    EXPECT_STREQ(AcDbEntity::desc()->name(), L"AcDbEntity");
    EXPECT_STREQ(AcDbCurve::desc()->name(), L"AcDbCurve");
    EXPECT_STREQ(AcDbLine::desc()->name(), L"AcDbLine");
    EXPECT_STREQ(AcDbCircle::desc()->name(), L"AcDbCircle");
}

TEST(Entities, LineKeepsItsEnds)
{
    AcDbLine line({1.0, 2.0, 3.0}, {-4.0, 5e300, 0.1});
    EXPECT_EQ(line.startPoint().z, 3.0);
    EXPECT_EQ(line.endPoint().x, -4.0);
    EXPECT_EQ(line.endPoint().y, 5e300);
    EXPECT_EQ(line.endPoint().z, 0.1);
    line.setStartPoint({7.0, 8.0, 9.0});
    line.setEndPoint({10.0, 11.0, 12.0});
    EXPECT_EQ(line.startPoint().x, 7.0);
    EXPECT_EQ(line.endPoint().y, 11.0);
}

TEST(Entities, NewLineLiesAtTheOrigin)
{
    const AcDbLine line;
    EXPECT_EQ(line.startPoint().distanceTo(AcGePoint3d::kOrigin), 0.0);
    EXPECT_EQ(line.endPoint().distanceTo(AcGePoint3d::kOrigin), 0.0);
}

TEST(Entities, CircleKeepsCenterNormalAndRadius)
{
    const AcDbCircle circle({1.0, 2.0, 3.0}, AcGeVector3d::kXAxis, 4.5);
    EXPECT_EQ(circle.center().y, 2.0);
    EXPECT_EQ(circle.normal().x, 1.0);
    EXPECT_EQ(circle.radius(), 4.5);
    EXPECT_EQ(AcDbCircle().normal().z, 1.0);
    EXPECT_EQ(AcDbCircle().radius(), 0.0);
}

} // namespace
