#include "viewer/scene/fit_points.h"

#include "tests/viewer/test_support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <numbers>
#include <random>
#include <string>
#include <vector>

namespace viewer
{
namespace
{

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

/// A model of one piece, whose lines join the first point to the second, the third to the fourth and so on.
Model LinesThrough(const std::vector<Point>& points)
{
    Model model;
    Piece& piece = model.pieces.emplace_back();
    for (std::size_t i = 0; i + 1 < points.size(); i += 2)
        piece.lines.push_back({points[i], points[i + 1]});
    return model;
}

double WidthAlong(const Point& direction, const std::vector<Point>& points)
{
    double low = kInfinity;
    double high = -kInfinity;
    for (const Point& point : points) {
        low = std::min(low, Dot(point, direction));
        high = std::max(high, Dot(point, direction));
    }
    return high - low;
}

TEST(FitPoints, SmallModelKeepsEachPointOnce)
{
    Model model = BoxModel(BoxOf({0, 0, 0}, {1, 2, 3}));
    model.pieces[0].lines = {{{0, 0, 0}, {4, 4, 4}}};
    std::vector<Point> points = FitPoints(model, {});
    EXPECT_EQ(points.size(), 9U) << "eight corners, one of which is an end of the line";
    EXPECT_NE(std::ranges::find(points, Point{4, 4, 4}), points.end());
    for (const Point& corner : CornersOf(BoxOf({0, 0, 0}, {1, 2, 3})))
        EXPECT_NE(std::ranges::find(points, corner), points.end());
}

TEST(FitPoints, HiddenCategoriesDoNotCount)
{
    Model model = BoxModel(BoxOf({0, 0, 0}, {1, 1, 1}));
    Model other = BoxModel(BoxOf({10, 0, 0}, {11, 1, 1}));
    other.pieces[0].category = 1;
    model.pieces.push_back(other.pieces[0]);
    EXPECT_EQ(FitPoints(model, {}).size(), 16U);
    for (const Point& point : FitPoints(model, {1}))
        EXPECT_LE(point.x, 1.0);
    EXPECT_TRUE(FitPoints(model, {0, 1}).empty());
}

TEST(FitPoints, PointsThatAreNotFiniteAreLeftOut)
{
    const Model model = LinesThrough({{0, 0, 0}, {kInfinity, 0, 0}, {0, kNotANumber, 0}, {1, 1, 1}});
    EXPECT_EQ(FitPoints(model, {}), (std::vector<Point>{{0, 0, 0}, {1, 1, 1}}));
}

TEST(FitPoints, LargeModelsKeepTheirExtentsInEveryDirection)
{
    constexpr int kCount = 40'000;
    constexpr double kGoldenAngle = 2.399963229728653;
    struct Case {
        const char* name;
        std::function<Point(double part, int index)> at; ///< part is from 0 to 1
    };
    const auto on_sphere = [&](double part, int i) {
        const double z = 1.0 - 2.0 * part;
        const double radius = std::sqrt(std::max(0.0, 1.0 - z * z));
        return Point{radius * std::cos(kGoldenAngle * i), radius * std::sin(kGoldenAngle * i), z};
    };
    // A direction and two others across it that no axis has.
    const Point along{2.0 / 3.0, 2.0 / 3.0, 1.0 / 3.0};
    const Point across{1.0 / 3.0, -2.0 / 3.0, 2.0 / 3.0};
    const Point third{-2.0 / 3.0, 1.0 / 3.0, 2.0 / 3.0};
    const auto turned = [=](const Point& p, double a, double b, double c) {
        return along * (a * p.x) + across * (b * p.y) + third * (c * p.z);
    };
    std::mt19937 random(7);
    std::uniform_real_distribution<double> uniform(-1.0, 1.0);
    const auto anywhere = [&] { return Point{uniform(random), uniform(random), uniform(random)}; };
    const std::vector<Case> cases = {
        {"sphere", on_sphere},
        {"far sphere",
         [&](double part, int i) {
             return on_sphere(part, i) + Point{1e6, -1e6, 1e6};
         }},
        {"slanted rod", [&](double part, int i) { return turned(on_sphere(part, i), 1000, 1, 1); }},
        {"slanted sheet", [&](double part, int i) { return turned(on_sphere(part, i), 1000, 700, 1); }},
        {"flat sheet", [&](double part, int i) { return turned(on_sphere(part, i), 3, 2, 0); }},
        {"helix",
         [&](double part, int) {
             const double turn = 200.0 * std::numbers::pi * part;
             return turned({part, std::cos(turn), std::sin(turn)}, 500, 1, 1);
         }},
        {"slanted box of points", [&](double, int) { return turned(anywhere(), 30, 3, 1); }},
        {"line", [&](double part, int) { return along * part; }},
        {"one point",
         [&](double, int) {
             return Point{3, 4, 5};
         }},
    };
    for (const Case& c : cases) {
        std::vector<Point> all;
        for (int i = 0; i < kCount; ++i)
            all.push_back(c.at((i + 0.5) / kCount, i));
        const std::vector<Point> kept = FitPoints(LinesThrough(all), {});
        EXPECT_LE(kept.size(), 131'076U) << c.name;
        double worst = 0.0;
        constexpr int kDirections = 60;
        for (int i = 0; i < kDirections; ++i) {
            // A third of the directions are close to being across the length, where rods and sheets are thin.
            Point direction = on_sphere((i + 0.5) / kDirections, i);
            if (i % 3 == 0)
                direction = direction - along * Dot(direction, along);
            const double width = WidthAlong(direction, all);
            const double kept_width = WidthAlong(direction, kept);
            EXPECT_LE(kept_width, width) << c.name;
            constexpr double kRounding = 1e-9;
            if (width > kRounding)
                worst = std::max(worst, 1.0 - kept_width / width);
        }
        EXPECT_LT(worst, 0.02) << c.name;
        RecordProperty(std::string("loss of ") + c.name, std::to_string(worst));
    }
}

} // namespace
} // namespace viewer
