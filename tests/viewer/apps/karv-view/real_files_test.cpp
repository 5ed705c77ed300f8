// Files of other programs, of many kinds, from end to end: read by a process of their own, fed to the control
// and drawn.
#include "tests/viewer/import/brep/brep_fixture.h"
#include "tests/viewer/import/dxf/dxf_fixture.h"
#include "tests/viewer/test_support.h"
#include "viewer/import/process/reader_client.h"
#include "viewer/scene/fitted_scene.h"
#include "viewer/window/viewport_window.h"

#include <BRepAlgoAPI_Cut.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeCylinder.hxx>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace viewer
{
namespace
{

Model Import(const std::string& path)
{
    ReaderLimits limits;
    limits.memory = std::size_t{4} << 30U;
    return ImportModel(path, {}, {}, {.limits = limits});
}

constexpr int kSide = 120;

/// A square window with a model on black.
class SceneWindow
{
  public:
    explicit SceneWindow(const Model& model)
    {
        UseHeadless();
        window_ = std::make_unique<ViewportWindow>(L"test", PictureSize{kSide, kSide}, false);
        window_->Control().SetBgColor(0, 0, 0);
        scene_ = std::make_unique<FittedScene>(window_->Control(), model);
    }

    Picture Draw(StandardView view, bool lines)
    {
        scene_->DrawLines(lines);
        scene_->Show(view, Projection::Parallel, 1.0);
        return window_->TakePicture();
    }

  private:
    std::unique_ptr<ViewportWindow> window_;
    std::unique_ptr<FittedScene> scene_;
};

long DrawnPixels(const Picture& picture)
{
    return std::ranges::count_if(picture.pixels, [](std::uint32_t pixel) { return pixel != 0; });
}

struct RealFile {
    const char* name;
    const char* path;
    bool has_faces;
};

void PrintTo(const RealFile& file, std::ostream* out)
{
    *out << file.name;
}

class RealFiles : public testing::TestWithParam<RealFile>
{
};

TEST_P(RealFiles, AreReadAndShowFacesAndLines)
{
    const Model model = Import(GetParam().path);
    ASSERT_FALSE(model.pieces.empty());
    EXPECT_EQ(model.FaceCount() > 0, GetParam().has_faces);
    SceneWindow window(model);
    const long in_faces = DrawnPixels(window.Draw(StandardView::SE, false));
    const long in_lines = DrawnPixels(window.Draw(StandardView::SE, true));
    // The model covers a good part of the picture.
    EXPECT_GT(in_faces, 100);
    EXPECT_GT(in_lines, 100);
    // The border is empty.
    const Picture picture = window.Draw(StandardView::SE, false);
    for (int i = 0; i < kSide; ++i)
        EXPECT_EQ(PixelAt(picture, i, 0) | PixelAt(picture, i, kSide - 1) | PixelAt(picture, 0, i) |
                      PixelAt(picture, kSide - 1, i),
                  0U)
            << i;
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, RealFiles,
    testing::Values(RealFile{"step", KARV_BREP_SAMPLES "/step/screw.step", true},
                    RealFile{"iges", KARV_BREP_SAMPLES "/iges/hammer.iges", true},
                    RealFile{"brep", KARV_BREP_SAMPLES "/occ/bottle.brep", true},
                    RealFile{"brep_wire", KARV_BREP_SAMPLES "/occ/edge.brep", false},
                    RealFile{"dxf_lines", KARV_LIBRECAD_LIBRARY "/elektro/opto/ve16.dxf", false},
                    RealFile{"dxf_mesh", KARV_ASSIMP_MODELS "/DXF/wuson.dxf", true},
                    RealFile{"stl", KARV_BREP_SAMPLES "/stl/propeller.stl", true},
                    RealFile{"obj", KARV_ASSIMP_MODELS "/OBJ/spider.obj", true},
                    RealFile{"ply", KARV_ASSIMP_MODELS "/PLY/Wuson.ply", true},
                    RealFile{"off", KARV_ASSIMP_MODELS "/OFF/Wuson.off", true},
                    RealFile{"gltf", KARV_ASSIMP_MODELS "/glTF2/BoxTextured-glTF/BoxTextured.gltf", true},
                    RealFile{"collada", KARV_ASSIMP_MODELS "/Collada/duck.dae", true},
                    RealFile{"fbx", KARV_ASSIMP_MODELS "/FBX/box.fbx", true},
                    RealFile{"threeds", KARV_ASSIMP_MODELS "/3DS/fels.3ds", true},
                    RealFile{"threemf", KARV_ASSIMP_MODELS "/3MF/box.3mf", true}),
    [](const auto& test) { return test.param.name; });

class DrawnFiles : public BrepTest
{
};

TEST_F(DrawnFiles, WhatLiesBehindAHoleIsSeenThroughItInItsColour)
{
    // A plate of 40 x 40 x 2 with a hole of radius 8 in its middle, green, and a small red plate below it.
    BrepTestDocument document;
    const TopoDS_Shape plate = BRepPrimAPI_MakeBox(40.0, 40.0, 2.0).Shape();
    const TopoDS_Shape drill = BRepPrimAPI_MakeCylinder(8.0, 10.0).Shape().Moved(MovedBy(20, 20, -4));
    const TopoDS_Shape below = BRepPrimAPI_MakeBox(4.0, 4.0, 1.0).Shape();
    const TDF_Label drilled = document.AddPart(BRepAlgoAPI_Cut(plate, drill).Shape(), "plate");
    const TDF_Label small = document.AddPart(below, "small");
    document.SetColor(drilled, 0.0, 1.0, 0.0);
    document.SetColor(small, 1.0, 0.0, 0.0);
    const TDF_Label whole = document.AddAssembly("whole");
    document.Place(whole, drilled, MovedBy(0, 0, 0));
    document.Place(whole, small, MovedBy(18, 18, -10));
    const Model model = Import(WriteStep(document));
    EXPECT_EQ(model.category_names, (std::vector<std::string>{"plate", "small"}));

    SceneWindow window(model);
    const Picture picture = window.Draw(StandardView::Top, false);
    // The plate of 40 units covers 0.915 of 120 pixels: 2.75 pixels per unit. From the middle, the small
    // plate extends 2 units (5.5 pixels), the hole 8 (22) and the plate 20 (55).
    const int middle = kSide / 2;
    // Faces that face the light have a white highlight.
    const auto red_of = [](std::uint32_t pixel) { return pixel >> 16U; };
    const auto green_of = [](std::uint32_t pixel) { return pixel >> 8U & 0xFFU; };
    const std::uint32_t below_the_hole = PixelAt(picture, middle, middle);
    EXPECT_GT(red_of(below_the_hole), green_of(below_the_hole) + 100U);
    EXPECT_EQ(PixelAt(picture, middle + 14, middle), 0U) << "the hole";
    EXPECT_EQ(PixelAt(picture, middle, middle - 14), 0U) << "the hole";
    const std::uint32_t beside_the_hole = PixelAt(picture, middle + 38, middle);
    EXPECT_GT(green_of(beside_the_hole), red_of(beside_the_hole) + 100U);
    EXPECT_EQ(PixelAt(picture, middle + 58, middle), 0U) << "beside the plate";
}

TEST_F(DrawnFiles, LineModeShowsTheEdgesOfTheFileAndNotThoseOfItsFacets)
{
    // A cylinder of radius 10 and height 20 has two circles and, apart from its seam, no other edge. The
    // front view has 0.915 x 120 / 20 = 5.5 pixels per unit.
    const Model model = Import(WriteStep(BRepPrimAPI_MakeCylinder(10.0, 20.0).Shape()));
    SceneWindow window(model);
    const Picture picture = window.Draw(StandardView::Front, true);
    const int middle = kSide / 2;
    int rows = 0;
    for (int row = 0; row < kSide; ++row) {
        int in_row = 0;
        for (int column = middle - 15; column <= middle + 15; ++column)
            in_row += PixelAt(picture, column, row) != 0 ? 1 : 0;
        rows += in_row > 0 ? 1 : 0;
    }
    // Two lines, each in one row or, smoothed, in two or three.
    EXPECT_GE(rows, 2);
    EXPECT_LE(rows, 6);
    EXPECT_NE(PixelAt(window.Draw(StandardView::Front, false), middle, middle), 0U);
}

TEST_F(DrawnFiles, ColoursAndLayersOfADrawingAreThoseOfTheFile)
{
    const std::string path = Write("d.dxf", Drawing("0 LINE 8 a 62 1 10 0 20 0 30 0 11 10 21 0 31 0 "
                                                    "0 LINE 8 b 62 5 10 0 20 10 30 0 11 10 21 10 31 0"));
    const Model model = Import(path);
    EXPECT_EQ(model.category_names, (std::vector<std::string>{"a", "b"}));
    SceneWindow window(model);
    const Picture picture = window.Draw(StandardView::Top, false);
    // y points up: the red line is the lower one.
    const auto has = [&](int first_row, std::uint32_t mask) {
        return std::any_of(picture.pixels.begin() + static_cast<std::ptrdiff_t>(first_row) * kSide,
                           picture.pixels.begin() +
                               static_cast<std::ptrdiff_t>(first_row + kSide / 2) * kSide,
                           [&](std::uint32_t pixel) { return (pixel & mask) != 0; });
    };
    EXPECT_TRUE(has(kSide / 2, 0xFF0000U));
    EXPECT_FALSE(has(kSide / 2, 0x0000FFU));
    EXPECT_TRUE(has(0, 0x0000FFU));
    EXPECT_FALSE(has(0, 0xFF0000U));
}

} // namespace
} // namespace viewer
