// The memory and the copies that frames and appends take, counted with an OpenGL that does nothing, so that
// every count is the module's own; and the state that is left when memory runs out.
#include "control/KARVOpenGLControl.h"
#include "platform/tools/trace.h"
#include "platform/winsys/backend.h"
#include "platform/winsys/backends.h"
#include "tests/support/allocation_count.h"
#include "tests/support/null_gl.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <utility>
#include <vector>

namespace karv_test
{
namespace
{

using EntityType = KARVGraphicalEntity::EntityType;
using Faces = std::vector<KARVGLFace>;

constexpr unsigned short kColor = 1;

/// Counts the entities that are destroyed during its life. Allocates nothing.
class DestructionCount final : public TraceSink
{
  public:
    DestructionCount() : previous_(InstallTraceSink(this)) {}
    DestructionCount(const DestructionCount&) = delete;
    DestructionCount& operator=(const DestructionCount&) = delete;
    ~DestructionCount() override { InstallTraceSink(previous_); }

    [[nodiscard]] std::size_t Destroyed() const { return destroyed_; }
    [[nodiscard]] std::size_t Faults() const { return faults_; }

    void EnterCall(const wchar_t* name) noexcept override
    {
        if (std::wcscmp(name, L"KARVGraphicalEntity::~KARVGraphicalEntity") == 0)
            ++destroyed_;
    }
    void LeaveCall(const wchar_t* /*name*/) noexcept override {}
    void ReportFault(const wchar_t* /*file*/, int /*line*/) noexcept override { ++faults_; }

  private:
    std::size_t destroyed_ = 0;
    std::size_t faults_ = 0;
    TraceSink* previous_;
};

Faces MakeFaces(std::size_t count, std::size_t corners)
{
    Faces faces(count);
    for (std::size_t i = 0; i < count; ++i)
        for (std::size_t k = 0; k < corners; ++k)
            faces[i].vertices.emplace_back(static_cast<double>(i), static_cast<double>(k), 1.0);
    return faces;
}

class FrameCost : public testing::Test
{
  protected:
    FrameCost()
    {
        winsys::UseBackend(winsys::MakeHeadlessBackend());
        host_.CreateEx(0, AfxRegisterWndClass(0), L"host", WS_POPUP | WS_VISIBLE, CRect(0, 0, 64, 64),
                       nullptr, 0);
        control_.CreateCtrl(CRect(0, 0, 64, 64), &host_, false);
        NullGl() = {};
    }

    void DrawFrames(int count)
    {
        for (int i = 0; i < count; ++i)
            SendMessageW(control_.m_hWnd, WM_TIMER, 1, 0);
    }

    void Append(Faces faces, int type = 0)
    {
        control_.AppendGeometry(std::move(faces), static_cast<EntityType>(type), kColor, 1.0F);
    }

    /// The cost of appending `faces` faces in one entity; the caller hands them over.
    std::pair<std::size_t, std::size_t> AllocationsAndBytesOfAppend(std::size_t faces, std::size_t corners)
    {
        Faces source = MakeFaces(faces, corners);
        control_.ClearGeometry(true);
        control_.AllocateMemory(1);
        const AllocationCount count;
        Append(std::move(source));
        return {count.Allocations(), count.Bytes()};
    }

    CWnd host_;
    KARVOpenGLControl control_;
};

TEST_F(FrameCost, AnAppendToTheCacheIsCounted)
{
    // One entity in a cache without room: at least its place in the cache is allocated.
    const AllocationCount count;
    Append({});
    EXPECT_GE(count.Allocations(), 1U);
    EXPECT_GE(count.Bytes(), sizeof(KARVGraphicalEntity));
}

TEST_F(FrameCost, FramesOfAThousandEntitiesAllocateNothing)
{
    constexpr std::size_t kEntities = 1000;
    constexpr std::size_t kFrames = 10;
    for (std::size_t i = 0; i < kEntities; ++i)
        Append(MakeFaces(6, i % 2 == 0 ? 4 : 3), static_cast<int>(i % 11));
    DrawFrames(1);
    NullGl() = {};
    const AllocationCount count;
    DrawFrames(kFrames);
    EXPECT_EQ(count.Allocations(), 0U);
    // All frames were drawn: half the entities call 6 lists each, the others send 6 triangles.
    EXPECT_EQ(NullGl().lists_called, kFrames * kEntities / 2 * 6);
    EXPECT_EQ(NullGl().vertices, kFrames * kEntities / 2 * 6 * 3);
}

TEST_F(FrameCost, FramesOfAHiddenCategoryAllocateNothing)
{
    Append(MakeFaces(6, 4), 3);
    control_.DisableObject(KARVGraphicalEntity::EntityType3);
    const AllocationCount count;
    DrawFrames(3);
    EXPECT_EQ(count.Allocations(), 0U);
    EXPECT_EQ(NullGl().lists_called, 0U);
}

TEST_F(FrameCost, ACategoryNeverMetBeforeIsTakenInByItsFirstFrameAlone)
{
    Append(MakeFaces(1, 3), 77);
    Append(MakeFaces(1, 3), 77);
    {
        const AllocationCount count;
        DrawFrames(1);
        EXPECT_EQ(count.Allocations(), 1U); // the node of the map
    }
    const AllocationCount count;
    DrawFrames(3);
    EXPECT_EQ(count.Allocations(), 0U);
}

TEST_F(FrameCost, FramesCopyNoEntity)
{
    for (int i = 0; i < 100; ++i)
        Append(MakeFaces(6, 4));
    const DestructionCount count;
    DrawFrames(10);
    EXPECT_EQ(count.Destroyed(), 0U); // a copy would be destroyed again
    EXPECT_EQ(count.Faults(), 0U);
    EXPECT_EQ(NullGl().lists_called, 10U * 100U * 6U);
}

TEST_F(FrameCost, AnAppendDestroysTheThreeTemporariesOfItsSteps)
{
    control_.AllocateMemory(2);
    {
        const DestructionCount count;
        Append(MakeFaces(2, 4));
        // The one that is built, the one passed to the cache, the one asked for its box.
        EXPECT_EQ(count.Destroyed(), 3U);
    }
    control_.ComputeExtents(false);
    const DestructionCount count;
    Append(MakeFaces(2, 4));
    EXPECT_EQ(count.Destroyed(), 2U); // its box is not asked for
}

TEST_F(FrameCost, AnEntityThatTheCacheHasNoMemoryForHasGrownTheSceneAlready)
{
    constexpr std::size_t kRoom = 8;
    control_.AllocateMemory(kRoom);
    for (std::size_t i = 0; i < kRoom; ++i)
        Append(MakeFaces(1, 3));    // corners (0, 0, 1) to (0, 2, 1)
    Faces beyond = MakeFaces(5, 3); // up to (4, 2, 1)
    const DestructionCount count;
    {
        const AllocationRefusal refusal((kRoom + 1) * sizeof(KARVGraphicalEntity));
        Append(std::move(beyond));
    }
    EXPECT_EQ(count.Faults(), 1U);
    EXPECT_EQ(control_.extentsMax, KARVGLVertex(4.0, 2.0, 1.0));
    EXPECT_EQ(control_.entities.size(), kRoom);
    EXPECT_EQ(control_.GetFaceNumber(), static_cast<int>(kRoom));
    Append(MakeFaces(1, 3));
    EXPECT_EQ(control_.entities.size(), kRoom + 1);
    EXPECT_EQ(control_.GetFaceNumber(), static_cast<int>(kRoom + 1));
}

TEST_F(FrameCost, MemoryThatCannotBeReservedLeavesTheCache)
{
    Append(MakeFaces(1, 3));
    const DestructionCount count;
    {
        const AllocationRefusal refusal(100 * sizeof(KARVGraphicalEntity));
        control_.AllocateMemory(100);
    }
    EXPECT_EQ(count.Faults(), 1U);
    EXPECT_EQ(control_.entities.size(), 1U);
    EXPECT_EQ(control_.entities.capacity(), 1U);
}

TEST_F(FrameCost, ANegativeReserveIsRefusedBeforeMemoryIsAskedFor)
{
    Append(MakeFaces(1, 3));
    const DestructionCount faults;
    const AllocationRefusal refusal(100 * sizeof(KARVGraphicalEntity));
    const AllocationCount count;
    control_.AllocateMemory(-1);
    EXPECT_EQ(faults.Faults(), 1U);
    // Only the message of the container's exception is allocated.
    EXPECT_LT(count.Bytes(), 100 * sizeof(KARVGraphicalEntity));
}

TEST_F(FrameCost, EntitiesAppendedOneByOneAreMovedLinearlyOften)
{
    constexpr std::size_t kEntities = 4096;
    const DestructionCount count;
    for (std::size_t i = 0; i < kEntities; ++i)
        Append(MakeFaces(1, 3));
    // Three for each append, and those moved by growth, by doubling or by half: 1 + 2 + 4 ... or twice that.
    EXPECT_LE(count.Destroyed(), 3 * kEntities + 3 * kEntities);
    EXPECT_EQ(control_.GetFaceNumber(), static_cast<int>(kEntities));
}

TEST_F(FrameCost, FaceListsThatAreHandedOverAreNotCopied)
{
    const auto [few, few_bytes] = AllocationsAndBytesOfAppend(10, 3);
    const auto [many, many_bytes] = AllocationsAndBytesOfAppend(100'000, 3);
    EXPECT_EQ(many, few);
    EXPECT_EQ(many_bytes, few_bytes);
    EXPECT_EQ(control_.GetFaceNumber(), 100'010);
}

TEST_F(FrameCost, TessellationTakesOneArrayOfCoordinatesForAFaceAndNoMore)
{
    constexpr std::size_t kCornerBytes = 3 * sizeof(double);
    const auto [few, few_bytes] = AllocationsAndBytesOfAppend(1'000, 6);
    const auto [many, many_bytes] = AllocationsAndBytesOfAppend(3'000, 6);
    EXPECT_LE(many - few, 2'000U);
    EXPECT_LE(many_bytes - few_bytes, kCornerBytes * 6 * 2'000);
    EXPECT_EQ(NullGl().lists_compiled, 4'000U);
}

TEST_F(FrameCost, TessellationOfManyCornersTakesMemoryLinearInThem)
{
    constexpr std::size_t kCornerBytes = 3 * sizeof(double);
    const auto [few, few_bytes] = AllocationsAndBytesOfAppend(1, 1'000);
    const auto [many, many_bytes] = AllocationsAndBytesOfAppend(1, 100'000);
    EXPECT_EQ(many, few);
    EXPECT_LE(many_bytes - few_bytes, 99'000U * kCornerBytes);
}

} // namespace
} // namespace karv_test
