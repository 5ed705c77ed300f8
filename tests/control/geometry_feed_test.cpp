// The effect of appended geometry: the cache, the face total, the switches of the categories.
#include "tests/control/shared_constants.h"
#include "tests/support/control_test.h"

#include "platform/host/db/entities.h"
#include "platform/winsys/opengl.h"

#include <algorithm>
#include <limits>

using namespace karv_test;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace
{

/// The lines of a trace without those of the entity's inner steps.
std::vector<std::string> WithoutInnerSteps(const TraceRecording& trace)
{
    std::vector<std::string> lines;
    for (std::string& line : trace.Listing()) {
        const bool inner = line.ends_with("InitParameters") || line.ends_with("DoesPointContainExtent") ||
                           line.ends_with("CreateGLCache");
        if (!inner)
            lines.push_back(std::move(line));
    }
    return lines;
}

const std::vector<std::string> kDestroyed = {"> KARVGraphicalEntity::~KARVGraphicalEntity",
                                             "< KARVGraphicalEntity::~KARVGraphicalEntity"};

/// The entries of the path that all appends share. With `computes_extents` the entity grows the scene.
std::vector<std::string> FunnelEntries(bool computes_extents)
{
    std::vector<std::string> lines = {"> KARVOpenGLControl::AddEntityToCache"};
    if (computes_extents) {
        lines.insert(lines.end(),
                     {"> KARVOpenGLControl::GLDetectExtents", "> KARVGraphicalEntity::GetExtents",
                      "< KARVGraphicalEntity::GetExtents", "> KARVOpenGLControl::GLComputeCentroid",
                      "> KARVGLCamera::SetTarget", "< KARVGLCamera::SetTarget",
                      "> KARVGLCamera::SetFarPlaneDistance", "< KARVGLCamera::SetFarPlaneDistance",
                      "< KARVOpenGLControl::GLComputeCentroid", "< KARVOpenGLControl::GLDetectExtents"});
        lines.insert(lines.end(), kDestroyed.begin(), kDestroyed.end()); // the copy for the extents
    }
    lines.insert(lines.end(), {"> KARVGraphicalEntity::GetFaceNumber", "< KARVGraphicalEntity::GetFaceNumber",
                               "< KARVOpenGLControl::AddEntityToCache"});
    lines.insert(lines.end(), kDestroyed.begin(), kDestroyed.end()); // the copy for the cache
    return lines;
}

std::vector<std::string> Joined(std::initializer_list<std::vector<std::string>> parts)
{
    std::vector<std::string> all;
    for (const std::vector<std::string>& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

class ControlGeometryFeed : public ControlTest
{
  protected:
    ControlGeometryFeed() : control_(NewControl()) {}

    void TearDown() override
    {
        control_.reset();
        ControlTest::TearDown();
    }

    void AppendUnitTriangle(int type = 0)
    {
        control_->AppendGeometry(TriangleInBox({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}), TypeOf(type), kRed, 1.0F);
    }

    std::unique_ptr<KARVOpenGLControl> control_;
};

TEST_F(ControlGeometryFeed, AFreshControlCountsNoFacesAndDrawsNothing)
{
    EXPECT_EQ(control_->GetFaceNumber(), 0);
    const GlRecording gl;
    control_->OnTimer(1);
    EXPECT_EQ(gl.Count("glColor4f"), 0);
}

TEST_F(ControlGeometryFeed, FacesBecomeOneEntityWithTypeColorAndOpacity)
{
    control_->AppendGeometry(TriangleInBox({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}), TypeOf(4), 5, 0.25F);
    ASSERT_EQ(control_->entities.size(), 1U);
    const KARVGraphicalEntity& entity = control_->entities.front();
    EXPECT_EQ(entity.entityType, TypeOf(4));
    EXPECT_EQ(entity.color, KARVGLVertex(0.0, 0.0, 1.0)); // 5 is blue
    EXPECT_EQ(entity.alpha, 0.25F);
    ASSERT_EQ(entity.faces.size(), 1U);
    EXPECT_EQ(entity.faces[0].vertices.size(), 3U);
    EXPECT_EQ(entity.faces[0].normal, KARVGLVertex(0.0, -1.0, 0.0));
}

TEST_F(ControlGeometryFeed, AColorIndexIsCutToEightBits)
{
    control_->AppendGeometry(TriangleInBox({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}), TypeOf(0), 257, 1.0F);
    EXPECT_EQ(control_->entities.at(0).color, KARVGLVertex(1.0, 0.0, 0.0)); // 257 leaves 1, red
}

TEST_F(ControlGeometryFeed, AnOpacityIsNotLimited)
{
    control_->AppendGeometry(TriangleInBox({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}), TypeOf(0), kRed, -3.0F);
    EXPECT_EQ(control_->entities.at(0).alpha, -3.0F);
}

TEST_F(ControlGeometryFeed, EveryFaceCounts)
{
    std::vector<KARVGLFace> faces = TriangleInBox({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0});
    faces.push_back(faces.front());
    faces.emplace_back();
    control_->AppendGeometry(faces, TypeOf(0), kRed, 1.0F);
    EXPECT_EQ(control_->GetFaceNumber(), 3);
    EXPECT_EQ(control_->entities.size(), 1U);
}

TEST_F(ControlGeometryFeed, AnEmptyFaceListIsAnEntityWithoutFaces)
{
    control_->AppendGeometry(std::vector<KARVGLFace>(), TypeOf(2), kRed, 1.0F);
    EXPECT_EQ(control_->GetFaceNumber(), 0);
    ASSERT_EQ(control_->entities.size(), 1U);
    EXPECT_EQ(control_->entities[0].entityType, TypeOf(2));
}

TEST_F(ControlGeometryFeed, TheCallersFacesAreNotTouched)
{
    const KARVGLFace square =
        MakeFace({{0.0, 0.0, 0.0}, {0.0, 0.0, 1.0}, {1.0, 0.0, 1.0}, {1.0, 0.0, 0.0}}, {0.0, -1.0, 0.0});
    const std::vector<KARVGLFace> faces = {square};
    control_->AppendGeometry(faces, TypeOf(0), kRed, 1.0F);
    EXPECT_EQ(faces[0].displayList, 0U);
    EXPECT_NE(control_->entities.at(0).faces.at(0).displayList, 0U);
}

TEST_F(ControlGeometryFeed, AHostLineKeepsItsOwnColorAndIsOpaque)
{
    AcDbLine line({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0});
    line.setColorIndex(3);
    control_->AppendGeometry(&line, TypeOf(7));
    ASSERT_EQ(control_->entities.size(), 1U);
    const KARVGraphicalEntity& entity = control_->entities.front();
    EXPECT_EQ(entity.entityType, TypeOf(7));
    EXPECT_EQ(entity.color, KARVGLVertex(0.0, 1.0, 0.0)); // 3 is green
    EXPECT_EQ(entity.alpha, 1.0F);
    EXPECT_THAT(entity.lineVertices, ElementsAre(KARVGLVertex(1.0, 2.0, 3.0), KARVGLVertex(4.0, 5.0, 6.0)));
    EXPECT_EQ(control_->GetFaceNumber(), 0);
}

TEST_F(ControlGeometryFeed, ANullHostEntityIsAnEmptyEntity)
{
    AcDbEntity* const nothing = nullptr;
    const TraceRecording trace;
    control_->AppendGeometry(nothing, TypeOf(7));
    ASSERT_EQ(control_->entities.size(), 1U);
    EXPECT_TRUE(control_->entities[0].faces.empty());
    EXPECT_TRUE(control_->entities[0].lineVertices.empty());
    EXPECT_NE(control_->entities[0].entityType, TypeOf(7)); // its category is never set
    EXPECT_THAT(trace.Faults(), IsEmpty());
}

TEST_F(ControlGeometryFeed, AHostCircleIsAnEntityWithoutGeometry)
{
    AcDbCircle circle({1.0, 1.0, 1.0}, AcGeVector3d::kZAxis, 2.0);
    control_->AppendGeometry(&circle, TypeOf(7));
    ASSERT_EQ(control_->entities.size(), 1U);
    EXPECT_TRUE(control_->entities[0].lineVertices.empty());
    EXPECT_EQ(control_->entities[0].entityType, TypeOf(7));
}

TEST_F(ControlGeometryFeed, AReadyEntityIsAddedAsItIs)
{
    KARVGraphicalEntity entity(TriangleInBox({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}), TypeOf(9), 2);
    entity.SetAlpha(0.125F);
    control_->AppendGeometry(entity);
    ASSERT_EQ(control_->entities.size(), 1U);
    EXPECT_EQ(control_->entities[0].entityType, TypeOf(9));
    EXPECT_EQ(control_->entities[0].alpha, 0.125F);
    EXPECT_EQ(control_->entities[0].color, KARVGLVertex(1.0, 1.0, 0.0)); // 2 is yellow
}

TEST_F(ControlGeometryFeed, AReadyEntityCanGoBeforeItIsDrawn)
{
    {
        const KARVGraphicalEntity entity(TriangleInBox({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}), TypeOf(0), kRed);
        control_->AppendGeometry(entity);
    }
    const GlRecording gl;
    control_->OnTimer(1);
    EXPECT_EQ(gl.Count("glVertex3f"), 3);
}

TEST_F(ControlGeometryFeed, AReadyEntityWithFacesAndLinesCountsItsFacesAlone)
{
    KARVGraphicalEntity entity(TriangleInBox({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}), TypeOf(0), kRed);
    entity.lineVertices = {{0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}};
    control_->AppendGeometry(entity);
    EXPECT_EQ(control_->GetFaceNumber(), 1);
}

TEST_F(ControlGeometryFeed, TwoAppendsOfOneEntityAreTwoCopies)
{
    const KARVGraphicalEntity entity(TriangleInBox({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}), TypeOf(0), kRed);
    control_->AppendGeometry(entity);
    control_->AppendGeometry(entity);
    EXPECT_EQ(control_->entities.size(), 2U);
    EXPECT_EQ(control_->GetFaceNumber(), 2);
    const GlRecording gl;
    control_->OnTimer(1);
    EXPECT_EQ(gl.Count("glColor4f"), 2);
}

TEST_F(ControlGeometryFeed, AppendingTrianglesMakesNoGlCall)
{
    const GlRecording gl;
    window_calls_.Clear();
    AppendUnitTriangle();
    EXPECT_THAT(gl.Listing(), IsEmpty());
    EXPECT_THAT(window_calls_.Listing(), IsEmpty());
}

TEST_F(ControlGeometryFeed, AThousandEntitiesKeepTheirOrder)
{
    for (int i = 0; i < 1000; ++i)
        AppendUnitTriangle(i);
    ASSERT_EQ(control_->entities.size(), 1000U);
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(control_->entities[static_cast<std::size_t>(i)].entityType, TypeOf(i));
    EXPECT_EQ(control_->GetFaceNumber(), 1000);
}

TEST_F(ControlGeometryFeed, GeometryAppendedBeforeTheWindowIsKeptAndDrawn)
{
    KARVOpenGLControl early;
    early.AppendGeometry(TriangleInBox({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0}), TypeOf(0), kRed, 1.0F);
    early.CreateCtrl(CRect(0, 0, kWidth, kHeight), &host_, false);
    const GlRecording gl;
    early.OnTimer(1);
    EXPECT_EQ(gl.Count("glVertex3f"), 3);
}

TEST_F(ControlGeometryFeed, FacesAreTracedStepByStep)
{
    const std::vector<KARVGLFace> faces = TriangleInBox({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0});
    const TraceRecording trace;
    control_->AppendGeometry(faces, TypeOf(0), kRed, 1.0F);
    EXPECT_EQ(WithoutInnerSteps(trace),
              Joined({{"> KARVOpenGLControl::AppendGeometry", "> KARVGraphicalEntity::KARVGraphicalEntity",
                       "< KARVGraphicalEntity::KARVGraphicalEntity", "> KARVGraphicalEntity::SetAlpha",
                       "< KARVGraphicalEntity::SetAlpha"},
                      FunnelEntries(true),
                      kDestroyed,
                      {"< KARVOpenGLControl::AppendGeometry"}}));
}

TEST_F(ControlGeometryFeed, AHostEntityIsTracedWithoutAnOpacity)
{
    AcDbLine line({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0});
    const TraceRecording trace;
    control_->AppendGeometry(&line, TypeOf(0));
    EXPECT_EQ(WithoutInnerSteps(trace),
              Joined({{"> KARVOpenGLControl::AppendGeometry", "> KARVGraphicalEntity::KARVGraphicalEntity",
                       "< KARVGraphicalEntity::KARVGraphicalEntity"},
                      FunnelEntries(true),
                      kDestroyed,
                      {"< KARVOpenGLControl::AppendGeometry"}}));
}

TEST_F(ControlGeometryFeed, AReadyEntityIsTracedWithItsArgumentDestroyedLast)
{
    const KARVGraphicalEntity entity;
    const TraceRecording trace;
    control_->AppendGeometry(entity);
    EXPECT_EQ(WithoutInnerSteps(trace), Joined({{"> KARVOpenGLControl::AppendGeometry"},
                                                FunnelEntries(true),
                                                {"< KARVOpenGLControl::AppendGeometry"},
                                                kDestroyed}));
}

TEST_F(ControlGeometryFeed, WithoutExtentsTheirStepIsLeftOut)
{
    control_->ComputeExtents(false);
    AcDbLine line({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0});
    const TraceRecording trace;
    control_->AppendGeometry(&line, TypeOf(0));
    EXPECT_EQ(WithoutInnerSteps(trace),
              Joined({{"> KARVOpenGLControl::AppendGeometry", "> KARVGraphicalEntity::KARVGraphicalEntity",
                       "< KARVGraphicalEntity::KARVGraphicalEntity"},
                      FunnelEntries(false),
                      kDestroyed,
                      {"< KARVOpenGLControl::AppendGeometry"}}));
}

TEST_F(ControlGeometryFeed, AReservedCacheSavesTheCopiesOfGrowing)
{
    control_->AllocateMemory(2);
    AppendUnitTriangle();
    const KARVGraphicalEntity entity;
    const TraceRecording trace;
    control_->AppendGeometry(entity);
    EXPECT_EQ(WithoutInnerSteps(trace), Joined({{"> KARVOpenGLControl::AppendGeometry"},
                                                FunnelEntries(true),
                                                {"< KARVOpenGLControl::AppendGeometry"},
                                                kDestroyed}));
}

TEST_F(ControlGeometryFeed, TheCacheGrowsBetweenTheScenesBoxAndTheCount)
{
    control_->AllocateMemory(1);
    AppendUnitTriangle();
    ASSERT_EQ(control_->entities.capacity(), 1U);
    const TraceRecording trace;
    AppendUnitTriangle();
    // Growing destroys the one entity in its old place. The copy asked for its box is destroyed before that,
    // at the end of its step.
    const std::vector<std::string> calls = trace.Calls();
    const auto extents = std::ranges::find(calls, "KARVOpenGLControl::GLDetectExtents");
    const auto counted = std::ranges::find(calls, "KARVGraphicalEntity::GetFaceNumber");
    ASSERT_LT(extents, counted);
    EXPECT_EQ(std::count(extents, counted, "KARVGraphicalEntity::~KARVGraphicalEntity"), 2);
}

TEST_F(ControlGeometryFeed, TheScenesBoxTakesTwoPointsOfAnEntity)
{
    const KARVGraphicalEntity entity;
    const TraceRecording trace;
    control_->GLDetectExtents(entity);
    EXPECT_THAT(trace.Calls(),
                ElementsAre("KARVOpenGLControl::GLDetectExtents", "KARVGraphicalEntity::GetExtents",
                            "KARVGraphicalEntity::DoesPointContainExtent",
                            "KARVGraphicalEntity::DoesPointContainExtent",
                            "KARVOpenGLControl::GLComputeCentroid", "KARVGLCamera::SetTarget",
                            "KARVGLCamera::SetFarPlaneDistance",
                            "KARVGraphicalEntity::~KARVGraphicalEntity")); // the argument's
}

class ControlClear : public ControlGeometryFeed, public testing::WithParamInterface<bool>
{
};

TEST_P(ControlClear, RemovesTheEntitiesAndKeepsTheTotal)
{
    AppendUnitTriangle();
    AppendUnitTriangle();
    control_->ClearGeometry(GetParam());
    EXPECT_TRUE(control_->entities.empty());
    EXPECT_EQ(control_->GetFaceNumber(), 2);
    AppendUnitTriangle();
    EXPECT_EQ(control_->GetFaceNumber(), 3);
}

TEST_P(ControlClear, KeepsTheCapacity)
{
    control_->AllocateMemory(50);
    AppendUnitTriangle();
    control_->ClearGeometry(GetParam());
    EXPECT_EQ(control_->entities.capacity(), 50U);
}

TEST_P(ControlClear, KeepsExtentsAndCamera)
{
    control_->AppendGeometry(TriangleInBox({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}), TypeOf(0), kRed, 1.0F);
    control_->ClearGeometry(GetParam());
    EXPECT_TRUE(control_->extentsSeeded);
    EXPECT_EQ(control_->extentsMin, KARVGLVertex(1.0, 2.0, 3.0));
    EXPECT_EQ(control_->extentsMax, KARVGLVertex(4.0, 5.0, 6.0));
    EXPECT_EQ(control_->centroid, KARVGLVertex(2.5, 3.5, 4.5));
    EXPECT_EQ(control_->sceneSize, 6.235382556915283F);
    EXPECT_EQ(control_->camera.target.x, 2.5);
}

TEST_P(ControlClear, LeavesACameraThatWasMovedSince)
{
    AppendUnitTriangle();
    control_->camera.SetTarget({7.0, 8.0, 9.0});
    control_->camera.SetFarPlaneDistance(5.0);
    control_->ClearGeometry(GetParam());
    EXPECT_EQ(control_->camera.target.distanceTo({7.0, 8.0, 9.0}), 0.0);
    EXPECT_EQ(control_->camera.farPlane, 500.0F);
}

TEST_P(ControlClear, KeepsTheSwitches)
{
    control_->DisableObject(TypeOf(3));
    control_->ClearGeometry(GetParam());
    EXPECT_TRUE(control_->disabledTypes.at(TypeOf(3)));
}

TEST_P(ControlClear, MakesNoGlCall)
{
    AppendUnitTriangle();
    const GlRecording gl;
    control_->ClearGeometry(GetParam());
    EXPECT_THAT(gl.Listing(), IsEmpty());
}

TEST_P(ControlClear, OfAnEmptyCacheChangesNothing)
{
    control_->ClearGeometry(GetParam());
    EXPECT_TRUE(control_->entities.empty());
    EXPECT_EQ(control_->GetFaceNumber(), 0);
}

TEST_P(ControlClear, LaterGeometryInsideTheOldBoxLeavesTheScene)
{
    control_->AppendGeometry(TriangleInBox({0.0, 0.0, 0.0}, {10.0, 10.0, 10.0}), TypeOf(0), kRed, 1.0F);
    const float size = control_->sceneSize;
    control_->ClearGeometry(GetParam());
    control_->AppendGeometry(TriangleInBox({4.0, 4.0, 4.0}, {5.0, 5.0, 5.0}), TypeOf(0), kRed, 1.0F);
    EXPECT_EQ(control_->extentsMax, KARVGLVertex(10.0, 10.0, 10.0));
    EXPECT_EQ(control_->extentsMin, KARVGLVertex(0.0, 0.0, 0.0));
    EXPECT_EQ(control_->centroid, KARVGLVertex(5.0, 5.0, 5.0));
    EXPECT_EQ(control_->sceneSize, size);
    EXPECT_EQ(control_->camera.farPlane, static_cast<float>(static_cast<double>(size) * 100.0));
}

INSTANTIATE_TEST_SUITE_P(BothArguments, ControlClear, testing::Bool());

TEST_F(ControlGeometryFeed, MemoryIsReservedExactly)
{
    AppendUnitTriangle();
    control_->AllocateMemory(777);
    EXPECT_EQ(control_->entities.capacity(), 777U);
    EXPECT_EQ(control_->entities.size(), 1U);
    EXPECT_EQ(control_->GetFaceNumber(), 1);
}

TEST_F(ControlGeometryFeed, ReservingForNoneChangesNothing)
{
    control_->AllocateMemory(0);
    EXPECT_EQ(control_->entities.capacity(), 0U);
}

TEST_F(ControlGeometryFeed, ReservingForFewerThanThereAreChangesNothing)
{
    AppendUnitTriangle();
    AppendUnitTriangle();
    const auto capacity = control_->entities.capacity();
    control_->AllocateMemory(1);
    EXPECT_EQ(control_->entities.capacity(), capacity);
    EXPECT_EQ(control_->entities.size(), 2U);
}

TEST_F(ControlGeometryFeed, ANegativeCountIsReportedAndChangesNothing)
{
    AppendUnitTriangle();
    const auto capacity = control_->entities.capacity();
    const TraceRecording trace;
    control_->AllocateMemory(-1);
    EXPECT_EQ(control_->entities.capacity(), capacity);
    EXPECT_EQ(control_->entities.size(), 1U);
    EXPECT_THAT(trace.Faults(), ElementsAre(testing::StartsWith(".\\KARVOpenGLControl.cpp:")));
}

TEST_F(ControlGeometryFeed, TheMostNegativeCountIsReportedToo)
{
    const TraceRecording trace;
    control_->AllocateMemory(std::numeric_limits<int>::min());
    EXPECT_EQ(trace.Faults().size(), 1U);
    EXPECT_EQ(control_->entities.capacity(), 0U);
}

TEST_F(ControlGeometryFeed, ReservedEntitiesStillDrawTheirLists)
{
    control_->AppendGeometry(
        {MakeFace({{0.0, 0.0, 0.0}, {0.0, 0.0, 1.0}, {1.0, 0.0, 1.0}, {1.0, 0.0, 0.0}}, {0.0, -1.0, 0.0})},
        TypeOf(0), kRed, 1.0F);
    const unsigned list = control_->entities.at(0).faces.at(0).displayList;
    control_->AllocateMemory(100);
    const GlRecording gl;
    control_->OnTimer(1);
    EXPECT_EQ(gl.Call("glCallList").text, "glCallList(" + std::to_string(list) + ")");
}

TEST_F(ControlGeometryFeed, ACategoryIsASwitchNotACounter)
{
    control_->DisableObject(TypeOf(4));
    control_->DisableObject(TypeOf(4));
    EXPECT_TRUE(control_->disabledTypes.at(TypeOf(4)));
    control_->EnableObject(TypeOf(4));
    EXPECT_FALSE(control_->disabledTypes.at(TypeOf(4)));
    EXPECT_EQ(control_->disabledTypes.size(), 11U);
}

TEST_F(ControlGeometryFeed, EnablingWhatIsEnabledChangesNothing)
{
    control_->EnableObject(TypeOf(4));
    EXPECT_FALSE(control_->disabledTypes.at(TypeOf(4)));
}

TEST_F(ControlGeometryFeed, DisablingAValueBeyondTenAddsItsKey)
{
    AppendUnitTriangle(11);
    control_->DisableObject(TypeOf(11));
    EXPECT_THAT(control_->disabledTypes, Contains(Pair(TypeOf(11), true)));
    EXPECT_EQ(control_->disabledTypes.size(), 12U);
    const GlRecording gl;
    control_->OnTimer(1);
    EXPECT_EQ(gl.Count("glColor4f"), 0);
}

TEST_F(ControlGeometryFeed, NegativeAndExtremeValuesAreCategoriesToo)
{
    constexpr int kMin = std::numeric_limits<int>::min();
    AppendUnitTriangle(-1);
    AppendUnitTriangle(kMin);
    control_->DisableObject(TypeOf(-1));
    control_->DisableObject(TypeOf(kMin));
    control_->EnableObject(TypeOf(kMin));
    const GlRecording gl;
    control_->OnTimer(1);
    EXPECT_EQ(gl.Count("glColor4f"), 1);
    EXPECT_EQ(control_->disabledTypes.begin()->first, TypeOf(kMin)); // keys are signed
}

TEST_F(ControlGeometryFeed, EnablingAnUnknownValueAddsItsKeyAsShown)
{
    control_->EnableObject(TypeOf(500));
    EXPECT_THAT(control_->disabledTypes, Contains(Pair(TypeOf(500), false)));
}

TEST_F(ControlGeometryFeed, SwitchesTouchNeitherCacheNorSceneNorGl)
{
    AppendUnitTriangle(2);
    const float size = control_->sceneSize;
    const GlRecording gl;
    window_calls_.Clear();
    control_->DisableObject(TypeOf(2));
    EXPECT_EQ(control_->entities.size(), 1U);
    EXPECT_EQ(control_->GetFaceNumber(), 1);
    EXPECT_EQ(control_->sceneSize, size);
    EXPECT_THAT(gl.Listing(), IsEmpty());
    EXPECT_THAT(window_calls_.Listing(), IsEmpty());
}

TEST_F(ControlGeometryFeed, ADisabledEntityCountsAndGrowsTheScene)
{
    control_->DisableObject(TypeOf(2));
    control_->AppendGeometry(TriangleInBox({1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}), TypeOf(2), kRed, 1.0F);
    EXPECT_EQ(control_->GetFaceNumber(), 1);
    EXPECT_EQ(control_->extentsMax, KARVGLVertex(4.0, 5.0, 6.0));
}

TEST_F(ControlGeometryFeed, EachControlHasItsOwnSwitchesAndCache)
{
    const auto other = NewControl();
    AppendUnitTriangle();
    control_->DisableObject(TypeOf(0));
    EXPECT_TRUE(other->entities.empty());
    EXPECT_FALSE(other->disabledTypes.at(TypeOf(0)));
    EXPECT_EQ(other->GetFaceNumber(), 0);
}

} // namespace
