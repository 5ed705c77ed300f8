#include "viewer/apps/win32-dialog/bundled_scene.h"

#include "viewer/scene/prism.h"

namespace win32_dialog
{

namespace
{

using viewer::Frame;
using viewer::Outline;
using viewer::Piece;

// All lengths in millimetres; the shaft lies along x.
constexpr double kPlateLength = 160.0;
constexpr double kPlateWidth = 80.0;
constexpr double kPlateHeight = 12.0;
constexpr double kPostDistance = 55.0; ///< from the middle
constexpr double kPostHalfThickness = 8.0;
constexpr double kPostHalfWidth = 24.0;
constexpr double kAxisHeight = 50.0;
constexpr double kShaftRadius = 14.0;
constexpr int kShaftCorners = 32;
constexpr double kShaftHalfLength = 75.0;
constexpr double kOverhang = 10.0; ///< of the centre lines beyond the parts

// Categories, in the order of drawing: the translucent cover comes last.
constexpr int kFrame = 0;
constexpr int kShaft = 1;
constexpr int kCenterLines = 2;
constexpr int kCover = 3;

// Palette indices of medium brightness: the light adds half of white to a face that is seen head-on.
constexpr unsigned char kFrameColor = 155; ///< dark blue-grey
constexpr unsigned char kShaftColor = 42;  ///< brass
constexpr unsigned char kLineColor = 1;    ///< red
constexpr unsigned char kCoverColor = 123; ///< dull green-blue
constexpr float kCoverOpacity = 0.35F;

/// Profiles seen from above; heights grow upwards.
constexpr Frame kFloor{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
/// Profiles seen from the right, with the origin on the shaft's axis; heights grow along x.
constexpr Frame kSide{{0, 0, kAxisHeight}, {0, 1, 0}, {0, 0, 1}, {1, 0, 0}};

Outline Rectangle(double half_u, double from_v, double to_v)
{
    return {{-half_u, from_v}, {half_u, from_v}, {half_u, to_v}, {-half_u, to_v}};
}

Piece Post(double x)
{
    const Outline outline = Rectangle(kPostHalfWidth, kPlateHeight - kAxisHeight, kPostHalfWidth);
    return viewer::MakePiece(
        "post", viewer::PrismFaces({outline}, kSide, x - kPostHalfThickness, x + kPostHalfThickness), kFrame,
        kFrameColor);
}

Piece CenterLines()
{
    Piece lines = viewer::MakePiece("centre lines", {}, kCenterLines, kLineColor);
    const double along = kShaftHalfLength + kOverhang;
    const double across = kPostHalfWidth + kOverhang;
    lines.lines.push_back({{-along, 0, kAxisHeight}, {along, 0, kAxisHeight}});
    for (const double x : {-kShaftHalfLength, kShaftHalfLength}) {
        lines.lines.push_back({{x, -across, kAxisHeight}, {x, across, kAxisHeight}});
        lines.lines.push_back({{x, 0, kAxisHeight - across}, {x, 0, kAxisHeight + across}});
    }
    return lines;
}

Piece Cover()
{
    constexpr double kHalfLength = kPostDistance - kPostHalfThickness - 1.0;
    const Outline outline = Rectangle(kPostHalfWidth, kPlateHeight - kAxisHeight, kPostHalfWidth);
    return viewer::MakePiece("cover", viewer::PrismFaces({outline}, kSide, -kHalfLength, kHalfLength), kCover,
                             kCoverColor, kCoverOpacity);
}

} // namespace

viewer::Model MakeBundledScene()
{
    const Outline plate = Rectangle(kPlateLength / 2, -kPlateWidth / 2, kPlateWidth / 2);
    viewer::Model model;
    model.title = "shaft";
    model.category_names = {"frame", "shaft", "centre lines", "cover"};
    model.pieces.push_back(viewer::MakePiece("plate", viewer::PrismFaces({plate}, kFloor, 0, kPlateHeight),
                                             kFrame, kFrameColor));
    model.pieces.push_back(Post(-kPostDistance));
    model.pieces.push_back(Post(kPostDistance));
    model.pieces.push_back(
        viewer::MakePiece("shaft",
                          viewer::PrismFaces({viewer::RegularPolygon({0, 0}, kShaftRadius, kShaftCorners)},
                                             kSide, -kShaftHalfLength, kShaftHalfLength),
                          kShaft, kShaftColor));
    model.pieces.push_back(CenterLines());
    model.pieces.push_back(Cover());
    return model;
}

} // namespace win32_dialog
