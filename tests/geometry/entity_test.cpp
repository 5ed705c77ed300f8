#include "tests/geometry/shapes.h"

#include "platform/host/cm/color.h"
#include "platform/host/db/entities.h"
#include "tests/support/trace_recording.h"

#include <gmock/gmock.h>

#include <limits>
#include <type_traits>
#include <utility>
#include <vector>

using karv_test::EntityOf;
using karv_test::Face;
using karv_test::FromFaces;
using karv_test::kRed;
using karv_test::TraceRecording;
using karv_test::Triangle;
using testing::ElementsAre;
using testing::IsEmpty;
using Entity = KARVGraphicalEntity;

namespace
{

const KARVGLVertex kWhite(1.0, 1.0, 1.0);
const KARVGLVertex kRedColor(1.0, 0.0, 0.0);

/// A line of a class derived from the host's.
class DerivedLine : public AcDbLine
{
  public:
    using AcDbLine::AcDbLine;
    [[nodiscard]] AcRxClass* isA() const override
    {
        static AcRxClass description(L"DerivedLine", AcDbLine::desc());
        return &description;
    }
};

void ExpectEmpty(Entity& entity)
{
    EXPECT_EQ(entity.GetFaceNumber(), 0);
    EXPECT_TRUE(entity.faces.empty());
    EXPECT_TRUE(entity.lineVertices.empty());
    EXPECT_EQ(entity.minExtent, KARVGLVertex());
    EXPECT_EQ(entity.maxExtent, KARVGLVertex());
    EXPECT_FALSE(entity.extentsValid);
}

/// The channels of a packed colour, each divided by 255 in 64 bits and narrowed.
KARVGLVertex Divided(Adesk::UInt32 rgb)
{
    const auto channel = [&](int shift) {
        return static_cast<double>(static_cast<float>((rgb >> static_cast<unsigned>(shift)) & 255U)) / 255.0;
    };
    return {channel(16), channel(8), channel(0)};
}

} // namespace

TEST(Entity, FieldsStandInTheirOrderInTheirTypes)
{
    static_assert(!std::is_polymorphic_v<Entity>);
    static_assert(std::is_standard_layout_v<Entity>);
    static_assert(std::is_same_v<decltype(Entity::faces), std::vector<KARVGLFace>>);
    static_assert(std::is_same_v<decltype(Entity::lineVertices), std::vector<KARVGLVertex>>);
    static_assert(std::is_same_v<decltype(Entity::alpha), float>);
    static_assert(std::is_same_v<decltype(Entity::extentsValid), bool>);
    static_assert(std::is_same_v<decltype(std::declval<Entity&>().GetFaceNumber()), int>);
    static_assert(std::is_same_v<decltype(std::declval<Entity&>() = std::declval<const Entity&>()), Entity&>);
    const Entity entity;
    const std::vector<const void*> fields = {&entity,           &entity.lineVertices, &entity.entityType,
                                             &entity.color,     &entity.alpha,        &entity.minExtent,
                                             &entity.maxExtent, &entity.extentsValid};
    EXPECT_EQ(static_cast<const void*>(&entity.faces), fields.front());
    EXPECT_TRUE(std::is_sorted(fields.begin(), fields.end(), std::less<>()));
}

TEST(Entity, DefaultIsEmptyOpaqueAndBlack)
{
    Entity entity;
    ExpectEmpty(entity);
    EXPECT_EQ(entity.alpha, 1.0F);
    EXPECT_EQ(entity.GetEntityType(), Entity::EntityType0);
    EXPECT_EQ(entity.color, KARVGLVertex());
}

TEST(Entity, NullHostEntityGivesAnEmptyOneOfNoCategory)
{
    Entity entity(static_cast<AcDbEntity*>(nullptr), Entity::EntityType7);
    ExpectEmpty(entity);
    EXPECT_EQ(entity.alpha, 1.0F);
    EXPECT_EQ(entity.GetEntityType(), Entity::EntityType0);
    EXPECT_EQ(entity.color, KARVGLVertex());
}

TEST(Entity, LineGivesOneSegmentFromStartToEnd)
{
    AcDbLine line({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
    line.setColorIndex(kRed);
    Entity entity(&line, Entity::EntityType7);
    EXPECT_THAT(entity.lineVertices, ElementsAre(KARVGLVertex(1.0, 2.0, 3.0), KARVGLVertex(4.0, 5.0, 6.0)));
    EXPECT_EQ(entity.GetFaceNumber(), 0);
    EXPECT_EQ(entity.GetEntityType(), Entity::EntityType7);
    EXPECT_EQ(entity.color, kRedColor);
    EXPECT_EQ(entity.alpha, 1.0F);
}

TEST(Entity, LineEndsAreNarrowedToFloats)
{
    AcDbLine line({0.1, 1e300, 1.0 + 0x1p-24 + 0x1p-40}, {1e-300, 0.2, 0.3});
    const Entity entity(&line, Entity::EntityType0);
    EXPECT_EQ(entity.lineVertices.at(0).x, 0.1F);
    EXPECT_EQ(entity.lineVertices.at(0).y, std::numeric_limits<float>::infinity());
    EXPECT_EQ(entity.lineVertices.at(0).z, 1.0F + 0x1p-23F);
    EXPECT_EQ(entity.lineVertices.at(1), KARVGLVertex(0.0, 0.2, 0.3));
}

TEST(Entity, ClassDerivedFromLineCountsAsALine)
{
    DerivedLine line({1.0, 1.0, 1.0}, {2.0, 2.0, 2.0});
    const Entity entity(&line, Entity::EntityType0);
    EXPECT_EQ(entity.lineVertices.size(), 2U);
}

TEST(Entity, CircleGivesAnEntityWithoutGeometry)
{
    AcDbCircle circle({5.0, 5.0, 5.0}, AcGeVector3d::kZAxis, 2.0);
    circle.setColorIndex(kRed);
    Entity entity(&circle, Entity::EntityType7);
    ExpectEmpty(entity);
    EXPECT_EQ(entity.GetEntityType(), Entity::EntityType7);
    EXPECT_EQ(entity.color, kRedColor);
}

TEST(Entity, PlainHostEntityAndCurveGiveNoGeometry)
{
    AcDbEntity plain;
    AcDbCurve curve;
    Entity from_plain(&plain, Entity::EntityType1);
    Entity from_curve(&curve, Entity::EntityType1);
    ExpectEmpty(from_plain);
    ExpectEmpty(from_curve);
}

TEST(Entity, SecondLineIsAppendedAndGrowsTheBox)
{
    AcDbLine first({-5.0, -5.0, -5.0}, {2.0, 2.0, 2.0});
    AcDbLine second({1.0, 1.0, 1.0}, {9.0, 1.0, 1.0});
    Entity entity(&first, Entity::EntityType0);
    entity.CreateGLCache(&second);
    EXPECT_THAT(entity.lineVertices, ElementsAre(KARVGLVertex(-5.0, -5.0, -5.0), KARVGLVertex(2.0, 2.0, 2.0),
                                                 KARVGLVertex(1.0, 1.0, 1.0), KARVGLVertex(9.0, 1.0, 1.0)));
    EXPECT_EQ(entity.minExtent, KARVGLVertex(-5.0, -5.0, -5.0));
    EXPECT_EQ(entity.maxExtent, KARVGLVertex(9.0, 2.0, 2.0));
}

TEST(Entity, HostEntityIsOnlyRead)
{
    AcDbLine line({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
    line.setColorIndex(13);
    {
        const Entity entity(&line, Entity::EntityType0);
    }
    EXPECT_EQ(line.colorIndex(), 13);
    EXPECT_EQ(line.startPoint().x, 1.0);
    EXPECT_EQ(line.endPoint().z, 6.0);
}

TEST(Entity, LineOutlivesTheHostEntity)
{
    std::vector<Entity> entities;
    {
        AcDbLine line({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
        entities.emplace_back(&line, Entity::EntityType0);
    }
    EXPECT_EQ(entities[0].lineVertices.at(1).z, 6.0F);
}

TEST(Entity, FacesAreTakenWithCornersAndNormals)
{
    Entity entity =
        FromFaces({Face({{1.0, 1.0, 1.0}, {2.0, 1.0, 1.0}, {1.0, 3.0, 1.0}}, {0.5, 0.25, 2.0}), Triangle()});
    EXPECT_EQ(entity.GetFaceNumber(), 2);
    EXPECT_THAT(
        entity.faces.at(0).vertices,
        ElementsAre(KARVGLVertex(1.0, 1.0, 1.0), KARVGLVertex(2.0, 1.0, 1.0), KARVGLVertex(1.0, 3.0, 1.0)));
    EXPECT_EQ(entity.faces.at(0).normal, KARVGLVertex(0.5, 0.25, 2.0));
    EXPECT_EQ(entity.GetEntityType(), Entity::EntityType3);
    EXPECT_TRUE(entity.lineVertices.empty());
}

TEST(Entity, NormalsAreNotComputed)
{
    const Entity entity =
        FromFaces({Face({{0.0, 0.0, 0.0}, {1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}}, {0.0, 0.0, 0.0})});
    EXPECT_EQ(entity.faces.at(0).normal, KARVGLVertex());
}

TEST(Entity, NoFacesGiveAnEmptyColoredEntity)
{
    Entity entity = FromFaces({});
    ExpectEmpty(entity);
    EXPECT_EQ(entity.color, kRedColor);
    EXPECT_EQ(entity.GetEntityType(), Entity::EntityType3);
}

TEST(Entity, CallersFacesAreNotTouched)
{
    KARVGLFace face = Triangle();
    face.displayList = 77;
    const std::vector<KARVGLFace> faces = {face};
    const Entity entity = FromFaces(faces);
    EXPECT_EQ(faces[0].displayList, 77U);
}

TEST(Entity, ListNameGivenByTheClientIsOverwritten)
{
    for (const std::size_t corners : {0U, 1U, 2U, 3U}) {
        KARVGLFace face = Triangle();
        face.vertices.resize(corners);
        face.displayList = 77;
        EXPECT_EQ(EntityOf(face).faces.at(0).displayList, 0U) << corners;
    }
}

TEST(Entity, HundredThousandTrianglesAreTaken)
{
    Entity entity = FromFaces(std::vector<KARVGLFace>(100000, Triangle()));
    EXPECT_EQ(entity.GetFaceNumber(), 100000);
    EXPECT_EQ(entity.maxExtent, KARVGLVertex(1.0, 1.0, 0.0));
}

TEST(Entity, ColorComesFromThePaletteByIndex)
{
    // Of the palette: 12 is (165, 0, 0), 13 is (165, 82, 82), 250 is the grey (51, 51, 51).
    EXPECT_EQ(FromFaces({}, 12).color, KARVGLVertex(165.0 / 255.0, 0.0, 0.0));
    EXPECT_EQ(FromFaces({}, 13).color, KARVGLVertex(165.0 / 255.0, 82.0 / 255.0, 82.0 / 255.0));
    EXPECT_EQ(FromFaces({}, 250).color, KARVGLVertex(0.2, 0.2, 0.2));
}

TEST(Entity, EveryIndexIsDividedIn64Bits)
{
    for (unsigned index = 0; index < 256; ++index) {
        const KARVGLVertex expected = Divided(AcCmEntityColor::lookUpRGB(static_cast<Adesk::UInt8>(index)));
        EXPECT_EQ(FromFaces({}, static_cast<unsigned short>(index)).color, expected) << index;
        AcDbLine line;
        line.setColorIndex(static_cast<Adesk::UInt16>(index));
        EXPECT_EQ(Entity(&line, Entity::EntityType0).color, expected) << index;
    }
}

TEST(Entity, IndexIsCutToEightBitsAtConstruction)
{
    EXPECT_EQ(FromFaces({}, 257).color, kRedColor);
    EXPECT_EQ(FromFaces({}, 256).color, kWhite);
    EXPECT_EQ(FromFaces({}, 0xFF01).color, kRedColor);
    AcDbLine line;
    line.setColorIndex(257);
    EXPECT_EQ(Entity(&line, Entity::EntityType0).color, kRedColor);
    line.setColorIndex(256);
    EXPECT_EQ(Entity(&line, Entity::EntityType0).color, kWhite);
}

TEST(Entity, SetColorPassesTheFullIndexToThePalette)
{
    // 257 is not in the palette, which answers its first colour, white; the low 8 bits alone would give red.
    Entity entity;
    entity.SetColor(257);
    EXPECT_EQ(entity.color, kWhite);
    entity.SetColor(kRed);
    EXPECT_EQ(entity.color, kRedColor);
    entity.SetColor(256);
    EXPECT_EQ(entity.color, kWhite);
    entity.SetColor(0);
    EXPECT_EQ(entity.color, kWhite);
}

TEST(Entity, SetColorMultipliesEveryChannelIn64Bits)
{
    constexpr double kPerStep = 0.00392156862745098;
    Entity entity;
    for (unsigned short index = 0; index < 300; ++index) {
        AcCmColor color;
        color.setColorIndex(index);
        entity.SetColor(index);
        EXPECT_EQ(entity.color,
                  KARVGLVertex(color.red() * kPerStep, color.green() * kPerStep, color.blue() * kPerStep))
            << index;
    }
}

TEST(Entity, SetColorChangesNothingElse)
{
    Entity entity = FromFaces({Triangle()});
    entity.SetAlpha(0.25F);
    entity.SetColor(5);
    EXPECT_EQ(entity.color, KARVGLVertex(0.0, 0.0, 1.0));
    EXPECT_EQ(entity.alpha, 0.25F);
    EXPECT_EQ(entity.GetEntityType(), Entity::EntityType3);
    EXPECT_EQ(entity.GetFaceNumber(), 1);
}

TEST(Entity, AlphaIsKeptAsGiven)
{
    Entity entity;
    for (const float alpha : {0.0F, 0.5F, 1.0F, -3.0F, 17.5F, std::numeric_limits<float>::infinity()}) {
        entity.SetAlpha(alpha);
        EXPECT_EQ(entity.alpha, alpha);
    }
    entity.SetAlpha(std::numeric_limits<float>::quiet_NaN());
    EXPECT_NE(entity.alpha, entity.alpha);
}

TEST(Entity, AnyCategoryIsKept)
{
    Entity entity;
    for (const int value :
         {0, 10, 11, -1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        entity.SetEntityType(static_cast<Entity::EntityType>(value));
        EXPECT_EQ(static_cast<int>(entity.GetEntityType()), value);
    }
    const auto odd = static_cast<Entity::EntityType>(4711);
    EXPECT_EQ(Entity(std::vector<KARVGLFace>{}, odd, kRed).entityType, odd);
}

TEST(Entity, CopyIsDeep)
{
    Entity source = FromFaces({Triangle()});
    source.lineVertices = {{0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}};
    source.SetAlpha(0.5F);
    Entity copy = source;
    copy.faces.at(0).vertices.at(0).x = 99.0F;
    copy.lineVertices.at(0).x = 99.0F;
    EXPECT_EQ(source.faces.at(0).vertices.at(0).x, 0.0F);
    EXPECT_EQ(source.lineVertices.at(0).x, 0.0F);
    EXPECT_EQ(copy.entityType, source.entityType);
    EXPECT_EQ(copy.color, source.color);
    EXPECT_EQ(copy.alpha, 0.5F);
    EXPECT_EQ(copy.minExtent, source.minExtent);
    EXPECT_EQ(copy.maxExtent, source.maxExtent);
    EXPECT_TRUE(copy.extentsValid);
}

TEST(Entity, AssignmentReplacesEverythingAndReturnsTheEntity)
{
    const Entity source = FromFaces({Triangle(), Triangle()}, 3);
    Entity entity = FromFaces({Triangle()}, 5);
    entity.lineVertices = {{0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}};
    entity.SetEntityType(Entity::EntityType9);
    entity.SetAlpha(0.1F);
    const Entity* result = &(entity = source);
    EXPECT_EQ(result, &entity);
    EXPECT_EQ(entity.GetFaceNumber(), 2);
    EXPECT_TRUE(entity.lineVertices.empty());
    EXPECT_EQ(entity.color, KARVGLVertex(0.0, 1.0, 0.0));
    EXPECT_EQ(entity.GetEntityType(), Entity::EntityType3);
    EXPECT_EQ(entity.alpha, 1.0F);
}

TEST(Entity, SelfAssignmentLeavesTheFaces)
{
    Entity entity = FromFaces({Triangle(), Triangle()});
    entity.lineVertices = {{0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}};
    const Entity& same = entity;
    entity = same;
    EXPECT_EQ(entity.GetFaceNumber(), 2);
    EXPECT_EQ(entity.faces.at(1).vertices.size(), 3U);
    EXPECT_EQ(entity.lineVertices.size(), 2U);
}

TEST(Entity, MoveHandsOverTheGeometry)
{
    Entity source = FromFaces({Triangle()});
    const KARVGLVertex* corners = source.faces.at(0).vertices.data();
    const Entity moved = std::move(source);
    EXPECT_EQ(moved.faces.at(0).vertices.data(), corners);
    EXPECT_EQ(moved.color, kRedColor);
    EXPECT_EQ(moved.maxExtent, KARVGLVertex(1.0, 1.0, 0.0));
    EXPECT_EQ(moved.entityType, Entity::EntityType3);
}

TEST(Entity, MovedFromEntityCanBeUsedAndAssigned)
{
    Entity source = FromFaces({Triangle()});
    const Entity moved = std::move(source);
    KARVGLVertex low;
    KARVGLVertex high;
    const TraceRecording trace;
    source.GetExtents(low, high); // NOLINT(bugprone-use-after-move)
    EXPECT_EQ(source.GetFaceNumber(), 0);
    source.SetAlpha(0.5F);
    source = moved;
    EXPECT_EQ(source.GetFaceNumber(), 1);
    EXPECT_THAT(trace.Faults(), IsEmpty());
}

TEST(Entity, MoveAssignmentToItselfLeavesAUsableEntity)
{
    Entity entity = FromFaces({Triangle()});
    Entity& same = entity;
    entity = std::move(same);
    entity = FromFaces({Triangle(), Triangle()});
    EXPECT_EQ(entity.GetFaceNumber(), 2);
}

TEST(EntityTrace, OperationsAreTracedUnderTheirNames)
{
    Entity entity;
    KARVGLVertex low;
    KARVGLVertex high;
    const TraceRecording trace;
    (void)entity.GetEntityType();
    entity.SetEntityType(Entity::EntityType1);
    entity.SetColor(kRed);
    entity.SetAlpha(0.5F);
    entity.GetExtents(low, high);
    (void)entity.GetFaceNumber();
    Entity::DoesPointContainExtent({}, low, high);
    (void)entity.FindFaceNormal({});
    entity.DrawObjectLines();
    EXPECT_THAT(trace.OutermostCalls(),
                ElementsAre("KARVGraphicalEntity::GetEntityType", "KARVGraphicalEntity::SetEntityType",
                            "KARVGraphicalEntity::SetColor", "KARVGraphicalEntity::SetAlpha",
                            "KARVGraphicalEntity::GetExtents", "KARVGraphicalEntity::GetFaceNumber",
                            "KARVGraphicalEntity::DoesPointContainExtent",
                            "KARVGraphicalEntity::FindFaceNormal", "KARVGraphicalEntity::DrawObjectLines"));
    EXPECT_THAT(trace.Faults(), IsEmpty());
}

TEST(EntityTrace, ConstructionFromGeometryAndDestructionAreTraced)
{
    AcDbLine line({1.0, 1.0, 1.0}, {2.0, 2.0, 2.0});
    const TraceRecording trace;
    {
        const Entity entity(&line, Entity::EntityType0);
    }
    EXPECT_THAT(trace.Calls(),
                ElementsAre("KARVGraphicalEntity::KARVGraphicalEntity", "KARVGraphicalEntity::CreateGLCache",
                            "KARVGraphicalEntity::DoesPointContainExtent",
                            "KARVGraphicalEntity::DoesPointContainExtent",
                            "KARVGraphicalEntity::~KARVGraphicalEntity"));
    EXPECT_THAT(trace.OutermostCalls(), ElementsAre("KARVGraphicalEntity::KARVGraphicalEntity",
                                                    "KARVGraphicalEntity::~KARVGraphicalEntity"));
}

TEST(EntityTrace, ConstructionFromNullIsTraced)
{
    const TraceRecording trace;
    {
        const Entity entity(static_cast<AcDbEntity*>(nullptr), Entity::EntityType0);
    }
    EXPECT_THAT(trace.Listing(), ElementsAre("> KARVGraphicalEntity::KARVGraphicalEntity",
                                             "< KARVGraphicalEntity::KARVGraphicalEntity",
                                             "> KARVGraphicalEntity::~KARVGraphicalEntity",
                                             "< KARVGraphicalEntity::~KARVGraphicalEntity"));
}

TEST(EntityTrace, ConstructionFromFacesNestsTheGrowingOfTheBox)
{
    const std::vector<KARVGLFace> faces = {Triangle()};
    const TraceRecording trace;
    {
        const Entity entity(faces, Entity::EntityType0, kRed);
    }
    EXPECT_THAT(trace.Calls(), ElementsAre("KARVGraphicalEntity::KARVGraphicalEntity",
                                           "KARVGraphicalEntity::DoesPointContainExtent",
                                           "KARVGraphicalEntity::DoesPointContainExtent",
                                           "KARVGraphicalEntity::DoesPointContainExtent",
                                           "KARVGraphicalEntity::~KARVGraphicalEntity"));
}

TEST(EntityTrace, DefaultConstructionCopyAndAssignmentAreNotTraced)
{
    Entity source;
    const TraceRecording trace;
    Entity fresh;
    Entity copy = source;
    copy = source;
    Entity moved = std::move(copy);
    fresh = std::move(moved);
    fresh.InitParameters();
    EXPECT_THAT(trace.Listing(), IsEmpty());
}

TEST(EntityTrace, DestructorIsTracedForEveryEntity)
{
    const TraceRecording trace;
    {
        const Entity entity;
        const Entity copy = entity;
    }
    EXPECT_THAT(trace.Calls(), ElementsAre("KARVGraphicalEntity::~KARVGraphicalEntity",
                                           "KARVGraphicalEntity::~KARVGraphicalEntity"));
}
