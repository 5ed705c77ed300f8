// The memory of large bodies, counted: it grows linearly with the number of faces.
#include "platform/modeler/body_builder.h"
#include "tests/support/allocation_count.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <numbers>
#include <optional>
#include <vector>

namespace karv_test
{
namespace
{

/// A ring of `count` x `count` quadrilaterals, cut into triangles or not.
AModeler::BodyBuilder RingOf(int count, bool cut)
{
    AModeler::BodyBuilder builder;
    const double step = 2.0 * std::numbers::pi / count;
    for (int i = 0; i < count; ++i)
        for (int k = 0; k < count; ++k) {
            const double radius = 2.0 + std::cos(step * k);
            builder.AddPoint({radius * std::cos(step * i), radius * std::sin(step * i), std::sin(step * k)});
        }
    for (int i = 0; i < count; ++i)
        for (int k = 0; k < count; ++k) {
            const int right = (i + 1) % count * count;
            const int up = (k + 1) % count;
            if (cut) {
                builder.AddFace(std::array{i * count + k, i * count + up, right + up});
                builder.AddFace(std::array{i * count + k, right + up, right + k});
            } else {
                builder.AddFace(std::array{i * count + k, i * count + up, right + up, right + k});
            }
        }
    return builder;
}

struct Cost {
    std::size_t allocations = 0;
    std::size_t bytes = 0;
    int faces = 0;
    std::size_t physical_edges = 0;
};

Cost CostOf(const AModeler::BodyBuilder& builder)
{
    const AllocationCount count;
    AModeler::Body body = builder.Build();
    Cost cost{count.Allocations(), count.Bytes(), body.faceCount()};
    std::vector<AModeler::Edge*> edges;
    std::vector<AModeler::Vertex*> vertices;
    body.getPhysicalEdgesAndVertices(true, true, edges, vertices);
    cost.physical_edges = edges.size();
    return cost;
}

TEST(ModelerCost, MillionFacesAreBuiltInMemoryThatGrowsAsTheirNumber)
{
    const Cost quarter = CostOf(RingOf(354, true));
    const Cost whole = CostOf(RingOf(708, true));
    EXPECT_EQ(whole.faces, 1'002'528); // 2 x 708 x 708
    EXPECT_EQ(whole.physical_edges, 1'503'792U);
    EXPECT_EQ(quarter.faces, 250'632);
    // Four times the faces; tables have sizes of powers of two, which may add one doubling.
    EXPECT_LE(whole.bytes, 8 * quarter.bytes);
    EXPECT_LE(whole.bytes, 1'002'528U * 600U);
    EXPECT_LE(whole.allocations, quarter.allocations + 10);
}

TEST(ModelerCost, FacesThatMustBeLookedAtTakeAllocationsAsTheirNumber)
{
    const Cost quarter = CostOf(RingOf(100, false));
    const Cost whole = CostOf(RingOf(200, false));
    EXPECT_EQ(whole.faces, 40'000);
    EXPECT_LE(whole.allocations, 4 * quarter.allocations);
    EXPECT_LE(whole.bytes, 8 * quarter.bytes);
}

TEST(ModelerCost, TrianglesTakeNoAllocationsOfTheirOwn)
{
    // Fans over a polygon from above and from below.
    const auto drum_of = [](int corners) {
        AModeler::BodyBuilder builder;
        for (int i = 0; i < corners; ++i) {
            const double angle = 2.0 * std::numbers::pi * i / corners;
            builder.AddPoint({std::cos(angle), std::sin(angle), 0.0});
        }
        const int top = builder.AddPoint({0, 0, 1});
        const int bottom = builder.AddPoint({0, 0, -1});
        for (int i = 0; i < corners; ++i) {
            const int next = (i + 1) % corners;
            builder.AddFace(std::array{top, next, i});
            builder.AddFace(std::array{bottom, i, next});
        }
        return builder;
    };
    const Cost small = CostOf(drum_of(1000));
    const Cost large = CostOf(drum_of(100'000));
    EXPECT_EQ(large.faces, 200'000);
    EXPECT_EQ(large.allocations, small.allocations);
}

TEST(ModelerCost, FaceOfManyCornersIsSplitInMemoryThatGrowsAsTheirNumber)
{
    // A comb: teeth of width 1, 1 apart, on a bar.
    const auto comb_of = [](int teeth) {
        AModeler::BodyBuilder builder;
        std::vector<int> loop{builder.AddPoint({2.0 * teeth, -1, 0}), builder.AddPoint({0, -1, 0})};
        for (int i = 0; i < teeth; ++i)
            for (const AcGePoint3d& corner : {AcGePoint3d{2.0 * i, 0, 0}, AcGePoint3d{2.0 * i, 5, 0},
                                              AcGePoint3d{2.0 * i + 1, 5, 0}, AcGePoint3d{2.0 * i + 1, 0, 0}})
                loop.push_back(builder.AddPoint(corner));
        builder.AddFace(loop);
        builder.AddFace(std::vector<int>(loop.rbegin(), loop.rend()));
        return builder;
    };
    const Cost small = CostOf(comb_of(100));
    const Cost large = CostOf(comb_of(1600));
    EXPECT_GT(large.faces, 1600);
    EXPECT_LE(large.bytes, 32 * small.bytes);
    EXPECT_LE(large.allocations, 20 * small.allocations);
}

} // namespace
} // namespace karv_test
