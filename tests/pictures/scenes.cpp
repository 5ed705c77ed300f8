#include "tests/pictures/scenes.h"

#include "platform/host/db/entities.h"
#include "platform/modeler/primitives.h"

#include <cmath>
#include <numbers>
#include <utility>
#include <vector>

namespace karv_test
{
namespace
{

using Entity = KARVGraphicalEntity;

constexpr Entity::EntityType kCategory = Entity::EntityType0;
constexpr unsigned short kRed = 1;
constexpr unsigned short kYellow = 2;
constexpr unsigned short kGreen = 3;
constexpr unsigned short kBlue = 5;
constexpr unsigned short kOrange = 30;

void Append(KARVOpenGLControl& control, AModeler::Body body, unsigned short color, float alpha = 1.0F)
{
    control.AppendGeometry(&body, kCategory, color, alpha);
}

/// A polygon. Corners run clockwise seen from the side that the normal points to.
void Append(KARVOpenGLControl& control, std::vector<KARVGLVertex> corners, const KARVGLVertex& normal,
            unsigned short color, float alpha = 1.0F)
{
    KARVGLFace face;
    face.vertices = std::move(corners);
    face.normal = normal;
    control.AppendGeometry({face}, kCategory, color, alpha);
}

void Append(KARVOpenGLControl& control, const AcGePoint3d& from, const AcGePoint3d& to, unsigned short color)
{
    AcDbLine line(from, to);
    line.setColorIndex(color);
    control.AppendGeometry(&line, kCategory);
}

/// A plate with a window in it, and a ring on it.
void FeedBodies(KARVOpenGLControl& control)
{
    const AModeler::Profile plate = {
        {{0.0, 0.0, 0.0}, {0.2, 0.0, 0.0}, {0.2, 0.2, 0.0}, {0.0, 0.2, 0.0}},
        {{0.12, 0.03, 0.0}, {0.18, 0.03, 0.0}, {0.18, 0.09, 0.0}, {0.12, 0.09, 0.0}}};
    Append(control, AModeler::MakePrism(plate, {0.0, 0.0, 0.05}), kOrange);
    constexpr int kSteps = 24;
    AModeler::Profile ring(2);
    for (int i = 0; i < kSteps; ++i) {
        const double angle = 2.0 * std::numbers::pi * i / kSteps;
        for (std::size_t loop = 0; loop < 2; ++loop) {
            const double radius = loop == 0 ? 0.05 : 0.03;
            ring[loop].emplace_back(0.07 + radius * std::cos(angle), 0.12 + radius * std::sin(angle), 0.05);
        }
    }
    Append(control, AModeler::MakePrism(ring, {0.0, 0.0, 0.12}), kBlue);
}

/// An L, which is concave, on the ground, and walls in several colours on two of its sides.
void FeedFaces(KARVOpenGLControl& control)
{
    Append(control,
           {{0.0, 0.0, 0.02},
            {0.0, 0.2, 0.02},
            {0.08, 0.2, 0.02},
            {0.08, 0.08, 0.02},
            {0.2, 0.08, 0.02},
            {0.2, 0.0, 0.02}},
           {0.0, 0.0, 1.0}, kYellow);
    constexpr std::array<unsigned short, 4> kColors = {kRed, kGreen, kBlue, 6};
    for (std::size_t i = 0; i < kColors.size(); ++i) {
        const double left = 0.05 * static_cast<double>(i);
        const double right = left + 0.04;
        Append(control, {{left, 0.15, 0.05}, {left, 0.15, 0.2}, {right, 0.15, 0.2}, {right, 0.15, 0.05}},
               {0.0, -1.0, 0.0}, kColors[i]);
    }
    // A line, for line mode.
    Append(control, {0.0, 0.0, 0.0}, {0.2, 0.2, 0.2}, kRed);
    Append(control, {0.2, 0.0, 0.1}, {0.0, 0.2, 0.1}, kGreen);
    // A slanted triangle, whose normal is not of unit length.
    Append(control, {{0.1, 0.02, 0.03}, {0.12, 0.12, 0.12}, {0.2, 0.1, 0.03}}, {0.9, -2.0, 2.0}, 4);
}

/// A fan of lines in many directions, and a box whose edges line mode shows.
void FeedLines(KARVOpenGLControl& control)
{
    constexpr int kLines = 12;
    for (int i = 0; i < kLines; ++i) {
        const double angle = 2.0 * std::numbers::pi * i / kLines + 0.1;
        Append(control, {0.1, 0.1, 0.15},
               {0.1 + 0.09 * std::cos(angle), 0.1 + 0.09 * std::sin(angle), 0.01 * (i + 1)},
               static_cast<unsigned short>(i + 1));
    }
    Append(control, AModeler::MakeBox({0.05, 0.05, 0.0}, {0.15, 0.15, 0.08}), kGreen);
}

/// A solid behind two translucent ones.
void FeedTranslucent(KARVOpenGLControl& control)
{
    Append(control, AModeler::MakeBox({0.0, 0.1, 0.0}, {0.1, 0.2, 0.1}), kRed);
    Append(control, AModeler::MakeBox({0.06, 0.05, 0.03}, {0.16, 0.15, 0.16}), kBlue, 0.5F);
    Append(control, {{0.02, 0.0, 0.02}, {0.02, 0.0, 0.18}, {0.18, 0.0, 0.18}, {0.18, 0.0, 0.02}},
           {0.0, -1.0, 0.0}, kGreen, 0.25F);
}

constexpr std::array<Scene, 4> kScenes = {{{"bodies", false, &FeedBodies},
                                           {"faces", false, &FeedFaces},
                                           {"lines", false, &FeedLines},
                                           {"translucent", true, &FeedTranslucent}}};

} // namespace

const std::array<Scene, 4>& Scenes()
{
    return kScenes;
}

} // namespace karv_test
