// Names, colours, assemblies and categories of B-rep files.
#include "platform/host/cm/color.h"
#include "tests/viewer/import/brep/brep_fixture.h"

#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeSphere.hxx>
#include <BRep_Builder.hxx>
#include <Interface_Static.hxx>
#include <STEPCAFControl_Controller.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS_Compound.hxx>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <numbers>

namespace viewer
{
namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

// The palette's first hues.
constexpr unsigned char kRed = 1;
constexpr unsigned char kYellow = 2;
constexpr unsigned char kGreen = 3;
constexpr unsigned char kBlue = 5;

TopoDS_Shape BlockShape(double x, double y, double z)
{
    return BRepPrimAPI_MakeBox(x, y, z).Shape();
}

TopoDS_Shape FaceOf(const TopoDS_Shape& shape, int index)
{
    TopExp_Explorer it(shape, TopAbs_FACE);
    for (; index > 0; --index)
        it.Next();
    return it.Current();
}

TopoDS_Shape TwoBoxes()
{
    TopoDS_Compound compound;
    BRep_Builder().MakeCompound(compound);
    BRep_Builder().Add(compound, BlockShape(1, 1, 1));
    BRep_Builder().Add(compound, BlockShape(2, 2, 2).Located(MovedBy(5, 0, 0)));
    return compound;
}

const TopoDS_Shape& SolidOf(const TopoDS_Shape& shape, int index)
{
    static TopoDS_Shape found;
    TopExp_Explorer it(shape, TopAbs_SOLID);
    for (; index > 0; --index)
        it.Next();
    found = it.Current();
    return found;
}

class BrepStructure : public BrepTest
{
  protected:
    Model Read() { return ImportBrep(WriteStep(document_), {}); }

    BrepTestDocument document_;
};

TEST_F(BrepStructure, AssemblyOfThreeLevelsKeepsItsNamesPlacesAndColours)
{
    const TDF_Label bolt = document_.AddPart(BlockShape(1, 1, 4), "bolt");
    const TDF_Label plate = document_.AddPart(BlockShape(20, 10, 1), "plate");
    const TDF_Label flange = document_.AddAssembly("flange");
    const TDF_Label joint = document_.AddAssembly("joint");
    const TDF_Label machine = document_.AddAssembly("machine");
    document_.SetColor(bolt, 0, 1, 0);
    document_.SetColor(plate, 1, 1, 0);
    document_.Place(flange, plate, MovedBy(0, 0, 1));
    document_.Place(flange, bolt, MovedBy(3, 0, 0));
    document_.Place(joint, flange, MovedBy(0, 100, 0));
    document_.Place(joint, bolt, MovedBy(0, 0, 50));
    document_.Place(machine, joint, MovedBy(1000, 0, 0));
    document_.Place(machine, plate, MovedBy(0, 0, 0));

    const Model model = Read();
    ASSERT_EQ(model.pieces.size(), 4U);
    EXPECT_EQ(model.pieces[0].name, "plate");
    EXPECT_THAT(model.pieces[0].parents, ElementsAre("machine", "joint", "flange"));
    EXPECT_EQ(model.pieces[0].color, kYellow);
    EXPECT_EQ(BoxOfFaces(model.pieces[0]).min, (Point{1000, 100, 1}));
    EXPECT_EQ(BoxOfFaces(model.pieces[0]).max, (Point{1020, 110, 2}));
    EXPECT_EQ(model.pieces[1].name, "bolt");
    EXPECT_THAT(model.pieces[1].parents, ElementsAre("machine", "joint", "flange"));
    EXPECT_EQ(model.pieces[1].color, kGreen);
    EXPECT_EQ(BoxOfFaces(model.pieces[1]).min, (Point{1003, 100, 0}));
    EXPECT_EQ(model.pieces[2].name, "bolt");
    EXPECT_THAT(model.pieces[2].parents, ElementsAre("machine", "joint"));
    EXPECT_EQ(BoxOfFaces(model.pieces[2]).min, (Point{1000, 0, 50}));
    EXPECT_EQ(model.pieces[3].name, "plate");
    EXPECT_THAT(model.pieces[3].parents, ElementsAre("machine"));

    // The first level with several products has the joint and a plate.
    EXPECT_THAT(model.category_names, ElementsAre("joint", "plate"));
    EXPECT_EQ(model.pieces[0].category, 0);
    EXPECT_EQ(model.pieces[2].category, 0);
    EXPECT_EQ(model.pieces[3].category, 1);
    for (const Piece& piece : model.pieces)
        EXPECT_TRUE(ClosesToABody(piece));
}

TEST_F(BrepStructure, TurnedInstanceStandsWhereItIsTurnedTo)
{
    const TDF_Label part = document_.AddPart(BlockShape(1, 2, 3), "part");
    const TDF_Label assembly = document_.AddAssembly("assembly");
    gp_Trsf turn;
    turn.SetRotation(gp_Ax1(gp_Pnt(0, 0, 0), gp::DZ()), std::numbers::pi / 2);
    document_.Place(assembly, part, TopLoc_Location(turn));
    const Model model = Read();
    ASSERT_EQ(model.pieces.size(), 1U);
    // A quarter turn takes x to y and y to -x.
    const Box box = BoxOfFaces(model.pieces[0]);
    EXPECT_NEAR(box.min.x, -2.0, 1e-12);
    EXPECT_NEAR(box.max.y, 1.0, 1e-12);
    EXPECT_NEAR(VolumeOf(model.pieces[0]), 6.0, 1e-12);
}

TEST_F(BrepStructure, InstanceKeepsANameOfItsOwn)
{
    const TDF_Label wheel = document_.AddPart(BlockShape(1, 1, 1), "wheel");
    const TDF_Label wagon = document_.AddAssembly("wagon");
    document_.Place(wagon, wheel, MovedBy(0, 0, 0), "left wheel");
    document_.Place(wagon, wheel, MovedBy(5, 0, 0), "right wheel");
    const Model model = Read();
    ASSERT_EQ(model.pieces.size(), 2U);
    EXPECT_EQ(model.pieces[0].name, "left wheel");
    EXPECT_EQ(model.pieces[1].name, "right wheel");
    // Both are one product.
    EXPECT_EQ(model.pieces[0].category, model.pieces[1].category);
}

TEST_F(BrepStructure, NameBeyondAsciiStaysAsItIs)
{
    document_.AddPart(BlockShape(1, 1, 1), "Gehäuse 壳");
    EXPECT_EQ(Read().pieces.at(0).name, "Gehäuse 壳");
}

TEST_F(BrepStructure, ColourOfAnInstanceGoesBeforeThatOfItsPart)
{
    const TDF_Label part = document_.AddPart(BlockShape(1, 1, 1), "part");
    const TDF_Label assembly = document_.AddAssembly("assembly");
    document_.SetColor(part, 1, 0, 0);
    document_.Place(assembly, part, MovedBy(0, 0, 0));
    document_.SetColor(document_.Place(assembly, part, MovedBy(5, 0, 0)), 0, 0, 1);
    const Model model = Read();
    ASSERT_EQ(model.pieces.size(), 2U);
    EXPECT_EQ(model.pieces[0].color, kRed);
    EXPECT_EQ(model.pieces[1].color, kBlue);
}

TEST_F(BrepStructure, LooseFacesKeepTheirColours)
{
    const TopoDS_Shape box = BlockShape(1, 1, 1);
    TopoDS_Compound faces;
    BRep_Builder().MakeCompound(faces);
    for (int i = 0; i < 3; ++i)
        BRep_Builder().Add(faces, FaceOf(box, i));
    const TDF_Label part = document_.AddPart(faces, "sheets");
    document_.SetColorOf(part, FaceOf(box, 0), 1, 0, 0);
    document_.SetColorOf(part, FaceOf(box, 1), 0, 0, 1);
    document_.SetColorOf(part, FaceOf(box, 2), 0, 0, 1);
    const Model model = ImportBrep(WriteIges(document_), {});
    std::size_t red = 0;
    std::size_t blue = 0;
    for (const Piece& piece : model.pieces) {
        red += piece.color == kRed ? piece.faces.size() : 0U;
        blue += piece.color == kBlue ? piece.faces.size() : 0U;
    }
    EXPECT_EQ(red, 1U);
    EXPECT_EQ(blue, 2U);
}

TEST_F(BrepStructure, ColourForOneUseDeepInAnAssemblyReachesThatOneOnly)
{
    const TDF_Label part = document_.AddPart(BlockShape(1, 1, 1), "part");
    const TDF_Label pair = document_.AddAssembly("pair");
    const TDF_Label machine = document_.AddAssembly("machine");
    document_.SetColor(part, 1, 0, 0);
    const TDF_Label inner = document_.Place(pair, part, MovedBy(0, 0, 0));
    document_.Place(machine, pair, MovedBy(0, 0, 0));
    const TDF_Label second = document_.Place(machine, pair, MovedBy(10, 0, 0));
    document_.SetColorOfUse({second, inner}, 0, 0, 1);
    const Model model = Read();
    ASSERT_EQ(model.pieces.size(), 2U);
    EXPECT_EQ(model.pieces[0].color, kRed);
    EXPECT_EQ(model.pieces[1].color, kBlue);
    EXPECT_EQ(BoxOfFaces(model.pieces[1]).min.x, 10.0);
}

TEST_F(BrepStructure, OpacityIsThatOfTheColour)
{
    document_.SetColor(document_.AddPart(BlockShape(1, 1, 1), "glass"), 0, 0, 1, 0.25F);
    const Model model = Read();
    EXPECT_EQ(model.pieces.at(0).color, kBlue);
    EXPECT_NEAR(model.pieces.at(0).alpha, 0.25F, 1e-3F);
}

TEST_F(BrepStructure, ColourBetweenThoseOfThePaletteTakesTheNearest)
{
    // 165, 82, 82 is index 13; each channel is off by 2.
    document_.SetColor(document_.AddPart(BlockShape(1, 1, 1), "part"), 167.0 / 255.0, 80.0 / 255.0,
                       84.0 / 255.0);
    EXPECT_EQ(Read().pieces.at(0).color, 13);
}

TEST_F(BrepStructure, PartWithoutColourIsGrey)
{
    document_.AddPart(BlockShape(1, 1, 1), "part");
    const unsigned int color = AcCmEntityColor::lookUpRGB(Read().pieces.at(0).color);
    const unsigned int red = color >> 16U;
    EXPECT_EQ(color, red << 16U | red << 8U | red);
    EXPECT_GT(red, 100U);
    EXPECT_LT(red, 200U);
}

TEST_F(BrepStructure, BodiesOfOnePartKeepTheirNamesAndColours)
{
    const TopoDS_Shape boxes = TwoBoxes();
    const TDF_Label part = document_.AddPart(boxes, "pair");
    document_.SetNameOf(part, SolidOf(boxes, 0), "small");
    document_.SetNameOf(part, SolidOf(boxes, 1), "large");
    document_.SetColorOf(part, SolidOf(boxes, 0), 1, 0, 0);
    document_.SetColorOf(part, SolidOf(boxes, 1), 0, 0, 1);
    STEPCAFControl_Controller::Init();
    ASSERT_TRUE(Interface_Static::SetIVal("write.stepcaf.subshapes.name", 1));
    const Model model = Read();
    Interface_Static::SetIVal("write.stepcaf.subshapes.name", 0);
    ASSERT_EQ(model.pieces.size(), 2U);
    EXPECT_EQ(model.pieces[0].color, kRed);
    EXPECT_EQ(model.pieces[1].color, kBlue);
    EXPECT_EQ(BoxOfFaces(model.pieces[1]).min, (Point{5, 0, 0}));
    EXPECT_EQ(model.pieces[0].name, "small");
    EXPECT_EQ(model.pieces[1].name, "large");
    EXPECT_THAT(model.pieces[1].parents, ElementsAre("pair"));
    // One part: the bodies differ by their colours.
    EXPECT_EQ(model.CategoryCount(), 2);
    EXPECT_THAT(model.category_names, ElementsAre("colour 1", "colour 5"));
}

TEST_F(BrepStructure, SeveralPartsAtTheTopAreCategoriesByName)
{
    document_.AddPart(BlockShape(1, 1, 1), "box");
    document_.AddPart(BRepPrimAPI_MakeSphere(1.0).Shape(), "ball");
    const Model model = Read();
    ASSERT_EQ(model.pieces.size(), 2U);
    EXPECT_THAT(model.category_names, ElementsAre("box", "ball"));
    EXPECT_EQ(model.pieces[1].category, 1);
    EXPECT_THAT(model.pieces[0].parents, IsEmpty());
}

TEST_F(BrepStructure, HiddenPartIsLeftOut)
{
    document_.AddPart(BlockShape(1, 1, 1), "seen");
    document_.Hide(document_.AddPart(BlockShape(2, 2, 2), "hidden"));
    const Model model = Read();
    ASSERT_EQ(model.pieces.size(), 1U);
    EXPECT_EQ(model.pieces[0].name, "seen");
}

TEST_F(BrepStructure, BrepFileHasOneCategoryAndNoNames)
{
    const Model model = ImportBrep(WriteBrep(TwoBoxes()), {});
    ASSERT_EQ(model.pieces.size(), 2U);
    EXPECT_EQ(model.CategoryCount(), 1);
    EXPECT_EQ(model.pieces[0].name, "");
    EXPECT_EQ(model.meters_per_unit, std::nullopt);
}

} // namespace
} // namespace viewer
