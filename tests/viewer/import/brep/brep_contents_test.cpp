// What B-rep files hold beside solids of one colour: single coloured faces, hidden parts, points, annotations,
// tessellated geometry, and parts in other files.
#include "platform/host/cm/color.h"
#include "tests/viewer/import/brep/brep_fixture.h"
#include "viewer/import/model_file.h"
#include "viewer/scene/feature_edges.h"

#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakeFace.hxx>
#include <BRepBuilderAPI_MakeVertex.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeCylinder.hxx>
#include <BRep_Builder.hxx>
#include <BinTools.hxx>
#include <STEPCAFControl_Writer.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>
#include <gp_Pln.hxx>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace viewer
{
namespace
{

using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

constexpr unsigned char kRedIndex = 1;
constexpr unsigned char kBlueIndex = 5;

TopoDS_Shape FaceNumber(const TopoDS_Shape& shape, int index)
{
    TopExp_Explorer it(shape, TopAbs_FACE);
    for (; index > 0; --index)
        it.Next();
    return it.Current();
}

TopoDS_Shape CompoundOf(const std::vector<TopoDS_Shape>& shapes)
{
    TopoDS_Compound compound;
    BRep_Builder().MakeCompound(compound);
    for (const TopoDS_Shape& shape : shapes)
        BRep_Builder().Add(compound, shape);
    return compound;
}

std::size_t LeftOutOf(const Model& model, const std::string& kind)
{
    for (const LeftOut& parts : model.left_out)
        if (parts.kind == kind)
            return parts.count;
    return 0;
}

class BrepContents : public BrepTest
{
  protected:
    /// A STEP file of the AP242 schema with these entities.
    std::string WriteStepText(const std::string& entities, const std::string& name = "text.stp") const
    {
        return Write(name,
                     "ISO-10303-21;\nHEADER;\nFILE_DESCRIPTION((''),'2;1');\n"
                     "FILE_NAME('','',(''),(''),'','','');\n"
                     "FILE_SCHEMA(('AP242_MANAGED_MODEL_BASED_3D_ENGINEERING_MIM_LF'));\nENDSEC;\nDATA;\n" +
                         entities + "ENDSEC;\nEND-ISO-10303-21;\n");
    }

    /// Writes an assembly of a box and a rod to "main.stp", and the parts to "part_box.stp" and "part_rod.stp".
    std::string WriteAssembly()
    {
        const TDF_Label assembly = document_.AddAssembly("assembly");
        document_.Place(assembly, document_.AddPart(BRepPrimAPI_MakeBox(1, 2, 3).Shape(), "box"),
                        MovedBy(10, 0, 0));
        document_.Place(assembly, document_.AddPart(BRepPrimAPI_MakeCylinder(1, 2).Shape(), "rod"),
                        MovedBy(0, 0, 0));
        const std::string name = "main.stp";
        const std::string path = PathOf(name);
        const std::filesystem::path before = std::filesystem::current_path();
        STEPCAFControl_Writer writer;
        EXPECT_TRUE(writer.Transfer(document_.Get(), STEPControl_AsIs, "part_"));
        std::filesystem::current_path(std::filesystem::path(path).parent_path());
        EXPECT_EQ(writer.Write(name.c_str()), IFSelect_RetDone);
        std::filesystem::current_path(before);
        return path;
    }

    static std::string AllTextOf(const std::string& path)
    {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    BrepTestDocument document_;
};

TEST_F(BrepContents, FacesOfASolidKeepTheirColours)
{
    const TopoDS_Shape box = BRepPrimAPI_MakeBox(10, 20, 30).Shape();
    const TDF_Label part = document_.AddPart(box, "part");
    document_.SetColor(part, 1, 0, 0);
    document_.SetColorOf(part, FaceNumber(box, 0), 0, 0, 1);
    const Model model = ImportBrep(WriteStep(document_), {});
    ASSERT_EQ(model.pieces.size(), 2U);
    const auto& [blue, red] = std::pair(std::min(model.pieces[0].faces.size(), model.pieces[1].faces.size()),
                                        std::max(model.pieces[0].faces.size(), model.pieces[1].faces.size()));
    EXPECT_EQ(blue, 1U);
    EXPECT_EQ(red, 5U);
    std::size_t edges = 0;
    for (const Piece& piece : model.pieces) {
        EXPECT_EQ(piece.color, piece.faces.size() == 1 ? kBlueIndex : kRedIndex);
        EXPECT_EQ(piece.name, "part");
        EXPECT_TRUE(piece.closes_with_others);
        edges += piece.edges.value().size();
    }
    // A box has twelve edges; each belongs to one of the pieces.
    EXPECT_EQ(edges, 12U);
}

TEST_F(BrepContents, FacesOfAPartlyColouredSolidPointOutwards)
{
    const TopoDS_Shape box = BRepPrimAPI_MakeBox(10, 20, 30).Shape();
    const TDF_Label part = document_.AddPart(box, "part");
    document_.SetColorOf(part, FaceNumber(box, 2), 0, 0, 1);
    const Model model = ImportBrep(WriteStep(document_), {});
    const Point center{5, 10, 15};
    for (const Piece& piece : model.pieces)
        for (const ModelFace& face : piece.faces)
            EXPECT_GT(Dot(face.normal, face.corners.at(0) - center), 0.0);
}

TEST_F(BrepContents, SolidOfTwoColoursIsSingleSidedAndShowsEachEdgeOnce)
{
    const TopoDS_Shape box = BRepPrimAPI_MakeBox(10, 20, 30).Shape();
    const TDF_Label part = document_.AddPart(box, "part");
    document_.SetColorOf(part, FaceNumber(box, 0), 0, 0, 1);
    const Model model = ReadModelFile(WriteStep(document_), {}, {});
    ASSERT_EQ(model.pieces.size(), 2U);
    std::vector<std::pair<Point, Point>> shown;
    for (const Piece& piece : model.pieces) {
        EXPECT_FALSE(piece.two_sided);
        for (const auto& [from, to] : FeatureEdges(piece)) {
            const Point along = to - from;
            // A diagonal of a face has two coordinates that change.
            EXPECT_EQ((along.x != 0.0) + (along.y != 0.0) + (along.z != 0.0), 1);
            for (const auto& other : shown)
                EXPECT_FALSE(other == std::pair(from, to) || other == std::pair(to, from));
            shown.emplace_back(from, to);
        }
    }
    EXPECT_EQ(shown.size(), 12U);
}

TEST_F(BrepContents, ColourOfAnInstanceCoversTheColoursOfFaces)
{
    const TopoDS_Shape box = BRepPrimAPI_MakeBox(10, 20, 30).Shape();
    const TDF_Label part = document_.AddPart(box, "part");
    document_.SetColorOf(part, FaceNumber(box, 0), 0, 0, 1);
    const TDF_Label assembly = document_.AddAssembly("assembly");
    document_.SetColor(document_.Place(assembly, part, MovedBy(1, 0, 0)), 1, 0, 0);
    const Model model = ImportBrep(WriteStep(document_), {});
    ASSERT_EQ(model.pieces.size(), 1U);
    EXPECT_EQ(model.pieces[0].color, kRedIndex);
    EXPECT_FALSE(model.pieces[0].closes_with_others);
}

TEST_F(BrepContents, HiddenPartsAreCounted)
{
    document_.AddPart(BRepPrimAPI_MakeBox(1, 1, 1).Shape(), "seen");
    document_.Hide(document_.AddPart(BRepPrimAPI_MakeBox(2, 2, 2).Shape(), "hidden"));
    const Model model = ImportBrep(WriteStep(document_), {});
    EXPECT_EQ(model.pieces.size(), 1U);
    EXPECT_EQ(LeftOutOf(model, "hidden part") + LeftOutOf(model, "hidden body"), 1U);
}

TEST_F(BrepContents, FileOfHiddenPartsSaysSo)
{
    document_.Hide(document_.AddPart(BRepPrimAPI_MakeBox(2, 2, 2).Shape(), "hidden"));
    EXPECT_THAT(ErrorOf(WriteStep(document_)), HasSubstr("1 hidden "));
}

TEST_F(BrepContents, UnboundedFacesAreCounted)
{
    const TopoDS_Shape plane = BRepBuilderAPI_MakeFace(gp_Pln(gp::XOY())).Shape();
    const TopoDS_Shape box = BRepPrimAPI_MakeBox(2, 2, 2).Shape();
    const Model model = ImportBrep(WriteBrep(CompoundOf({plane, box})), {});
    EXPECT_EQ(model.pieces.size(), 1U);
    EXPECT_EQ(LeftOutOf(model, "unbounded face"), 1U);
}

TEST_F(BrepContents, PointsAreSmallCrosses)
{
    const TopoDS_Shape box = BRepPrimAPI_MakeBox(30, 40, 1e-3).Shape();
    const TopoDS_Shape point = BRepBuilderAPI_MakeVertex(gp_Pnt(3, 4, 0)).Shape();
    const Model model = ImportBrep(WriteBrep(CompoundOf({box, point})), {});
    ASSERT_EQ(model.pieces.size(), 2U);
    const Piece& cross = model.pieces[1];
    ASSERT_EQ(cross.lines.size(), 3U);
    // The diagonal of the box is 50, to a small part.
    for (const Segment& line : cross.lines) {
        EXPECT_NEAR(Length(line.to - line.from), 0.005 * 50.0, 0.005);
        EXPECT_NEAR(Length((line.to + line.from) * 0.5 - Point{3, 4, 0}), 0.0, 1e-12);
    }
}

TEST_F(BrepContents, PointsOfAStepFileAreShown)
{
    const TopoDS_Shape points = CompoundOf({BRepBuilderAPI_MakeVertex(gp_Pnt(0, 0, 0)).Shape(),
                                            BRepBuilderAPI_MakeVertex(gp_Pnt(10, 0, 0)).Shape()});
    const Model model = ImportBrep(WriteStep(points), {});
    std::size_t lines = 0;
    for (const Piece& piece : model.pieces)
        lines += piece.lines.size();
    EXPECT_EQ(lines, 6U);
}

TEST_F(BrepContents, BrepFileWithSomethingBehindItsEndIsRead)
{
    static_cast<void>(WriteBrep(BRepPrimAPI_MakeBox(2, 2, 2).Shape()));
    const std::string longer = Write("longer.brep", Read("shape.brep") + "\n# made by a program\n\n");
    EXPECT_EQ(ImportBrep(longer, {}).pieces.size(), 1U);
}

TEST_F(BrepContents, BinaryBrepFileIsRead)
{
    const std::string path = PathOf("binary.bbrep");
    ASSERT_TRUE(BinTools::Write(BRepPrimAPI_MakeCylinder(5, 10).Shape(), path.c_str()));
    const Model model = ImportBrep(path, {});
    ASSERT_EQ(model.pieces.size(), 1U);
    EXPECT_TRUE(ClosesToABody(model.pieces[0]));
}

TEST_F(BrepContents, BinaryBrepFileCutAnywhereIsRefused)
{
    const std::string path = PathOf("binary.brep");
    ASSERT_TRUE(BinTools::Write(BRepPrimAPI_MakeCylinder(5, 10).Shape(), path.c_str()));
    const std::string text = AllTextOf(path);
    for (std::size_t i = 1; i < 20; ++i)
        EXPECT_THAT(ErrorOf(Write("cut.brep", text.substr(0, text.size() * i / 20))),
                    Not(HasSubstr("read without an error")))
            << i;
    EXPECT_THAT(ErrorOf(Write("cut.brep", text.substr(0, text.size() - 2))),
                Not(HasSubstr("read without an error")));
}

TEST_F(BrepContents, FacesOfAnIgesFileThatCloseAreASolid)
{
    const Model model = ImportBrep(WriteIges(BRepPrimAPI_MakeBox(10, 20, 30).Shape(), false), {});
    ASSERT_EQ(model.pieces.size(), 1U);
    EXPECT_EQ(model.pieces[0].faces.size(), 6U);
    EXPECT_TRUE(ClosesToABody(model.pieces[0]));
    EXPECT_EQ(model.pieces[0].edges.value().size(), 12U);
}

TEST_F(BrepContents, SewnFacesOfAnIgesFileKeepTheirColours)
{
    const TopoDS_Shape box = BRepPrimAPI_MakeBox(10, 20, 30).Shape();
    std::vector<TopoDS_Shape> faces;
    for (int i = 0; i < 6; ++i)
        faces.push_back(FaceNumber(box, i));
    const TDF_Label part = document_.AddPart(CompoundOf(faces), "faces");
    document_.SetColorOf(part, faces[0], 1, 0, 0);
    document_.SetColorOf(part, faces[1], 0, 0, 1);
    const Model model = ImportBrep(WriteIges(document_), {});
    ASSERT_EQ(model.pieces.size(), 3U);
    std::size_t faces_found = 0;
    for (const Piece& piece : model.pieces) {
        EXPECT_TRUE(piece.closes_with_others);
        EXPECT_EQ(piece.faces.size(), piece.color == kRedIndex || piece.color == kBlueIndex ? 1U : 4U);
        faces_found += piece.faces.size();
    }
    EXPECT_EQ(faces_found, 6U);
}

TEST_F(BrepContents, FileWithoutShapesSaysWhatItHolds)
{
    EXPECT_THAT(
        ErrorOf(WriteStepText("#1=CARTESIAN_POINT('',(0.,0.,0.));\n#2=CARTESIAN_POINT('',(1.,0.,0.));\n"
                              "#3=DIRECTION('a ; #9=NOTHING(',(1.,0.,0.));\n")),
        EndsWith("but 2 CARTESIAN_POINT, 1 DIRECTION"));
}

TEST_F(BrepContents, IgesFileWithoutShapesSaysWhatItHolds)
{
    static_cast<void>(WriteIges(BRepBuilderAPI_MakeEdge(gp_Pnt(0, 0, 0), gp_Pnt(1, 0, 0)).Shape(), false));
    // A line (type 110) becomes a note without geometry (type 212) in both lines of its entry.
    std::string text = Read("shape.igs");
    for (auto at = text.find("     110"); at != std::string::npos; at = text.find("     110", at + 1))
        text.replace(at, 8, "     212");
    for (auto at = text.find("\n110,"); at != std::string::npos; at = text.find("\n110,", at + 1))
        text.replace(at, 5, "\n212,");
    EXPECT_THAT(ErrorOf(Write("note.igs", text)), HasSubstr("of type 212"));
}

TEST_F(BrepContents, HiddenEntityOfAnIgesFileIsCounted)
{
    static_cast<void>(WriteIges(BRepBuilderAPI_MakeEdge(gp_Pnt(0, 0, 0), gp_Pnt(1, 0, 0)).Shape(), false));
    std::string text = Read("shape.igs");
    // The status is in the columns 65 to 72 of an entity's first line; its first two digits hide the entity.
    constexpr std::size_t kStatus = 64;
    const auto line = text.find("\n     110") + 1;
    ASSERT_EQ(text.substr(line + kStatus, 2), "00");
    EXPECT_EQ(ImportBrep(Write("seen.igs", text), {}).pieces.size(), 1U);
    text.replace(line + kStatus, 2, "01");
    EXPECT_THAT(ErrorOf(Write("hidden.igs", text)), HasSubstr("1 hidden entity"));
}

TEST_F(BrepContents, PartsInFilesBesideAreRead)
{
    const std::string path = WriteAssembly();
    const Model model = ImportBrep(path, {});
    EXPECT_EQ(model.pieces.size(), 2U);
    EXPECT_TRUE(model.left_out.empty());
    const std::string relative = std::filesystem::relative(path).string();
    EXPECT_EQ(ImportBrep(relative, {}).pieces.size(), 2U) << relative;
    ASSERT_TRUE(std::filesystem::remove(PathOf("part_rod.stp")));
    const Model rest = ImportBrep(path, {});
    EXPECT_EQ(rest.pieces.size(), 1U);
    EXPECT_EQ(LeftOutOf(rest, "missing file \"part_rod.stp\""), 1U);
    EXPECT_EQ(rest.left_out.size(), 1U);
}

TEST_F(BrepContents, FilesOutsideOfTheFolderAreNotRead)
{
    const std::string main = AllTextOf(WriteAssembly());
    std::filesystem::create_directory(PathOf("inner"));
    std::filesystem::copy_file(PathOf("part_box.stp"), PathOf("inner/part_box.stp"));
    for (const std::string& other : {std::string("../part_rod.stp"), PathOf("part_rod.stp")}) {
        std::string text = main;
        for (auto at = text.find("'part_rod.stp'"); at != std::string::npos;
             at = text.find("'part_rod.stp'", at + 1))
            text.replace(at + 1, 12, other);
        const Model model = ImportBrep(Write("inner/main.stp", text), {});
        EXPECT_EQ(model.pieces.size(), 1U) << other;
        EXPECT_EQ(LeftOutOf(model, "missing file \"part_rod.stp\""), 1U) << other;
    }
}

TEST_F(BrepContents, LinksOutOfTheFolderAreNotFollowed)
{
    static_cast<void>(WriteAssembly());
    std::filesystem::create_directory(PathOf("inner"));
    std::filesystem::copy_file(PathOf("main.stp"), PathOf("inner/main.stp"));
    std::filesystem::copy_file(PathOf("part_box.stp"), PathOf("inner/part_box.stp"));
    std::filesystem::create_symlink(PathOf("part_rod.stp"), PathOf("inner/part_rod.stp"));
    const Model model = ImportBrep(PathOf("inner/main.stp"), {});
    EXPECT_EQ(model.pieces.size(), 1U);
    EXPECT_EQ(LeftOutOf(model, "file \"part_rod.stp\", which refers to itself or out of its folder"), 1U);
    EXPECT_EQ(model.left_out.size(), 1U);
}

TEST_F(BrepContents, FileThatRefersToItselfByAnotherNameIsNotReadForever)
{
    std::string text = AllTextOf(WriteAssembly());
    for (auto at = text.find("'part_rod.stp'"); at != std::string::npos; at = text.find("'part_rod.stp'", at))
        text.replace(at, 14, "'./main.stp'");
    const Model model = ImportBrep(Write("main.stp", text), {});
    EXPECT_EQ(model.pieces.size(), 1U);
    EXPECT_EQ(LeftOutOf(model, "file \"./main.stp\", which refers to itself or out of its folder"), 1U);
}

TEST_F(BrepContents, FilesThatReferToEachOtherAreNotReadForever)
{
    const std::string path = WriteAssembly();
    // The file of the rod is a copy of the assembly, whose rod is the assembly.
    std::string text = AllTextOf(path);
    for (auto at = text.find("'part_rod.stp'"); at != std::string::npos; at = text.find("'part_rod.stp'", at))
        text.replace(at, 14, "'main.stp'");
    Write("part_rod.stp", text);
    const Model model = ImportBrep(path, {});
    EXPECT_EQ(model.pieces.size(), 1U);
    EXPECT_EQ(LeftOutOf(model, "file \"part_rod.stp\", which refers to itself or out of its folder"), 1U);
    EXPECT_EQ(model.left_out.size(), 1U);
}

/// The number of the first entity of a type in the text of a STEP file, with '#'.
std::string NumberOf(const std::string& text, const std::string& type)
{
    const auto at = text.find(type + "(");
    EXPECT_NE(at, std::string::npos) << type;
    const auto number = text.rfind('#', at);
    return text.substr(number, text.find_first_not_of("0123456789", number + 1) - number);
}

/// The text of a STEP file with more entities.
std::string WithEntities(const std::string& text, const std::string& entities)
{
    const auto end = text.rfind("ENDSEC;");
    return text.substr(0, end) + entities + text.substr(end);
}

TEST_F(BrepContents, BodyOnAHiddenLayerIsCounted)
{
    static_cast<void>(WriteStep(BRepPrimAPI_MakeBox(1, 2, 3).Shape()));
    const std::string text = Read("shape.step");
    const std::string solid = NumberOf(text, "MANIFOLD_SOLID_BREP");
    const std::string path =
        Write("layer.step", WithEntities(text, "#90001=PRESENTATION_LAYER_ASSIGNMENT('off','',(" + solid +
                                                   "));\n#90002=INVISIBILITY((#90001));\n"));
    EXPECT_THAT(ErrorOf(path), HasSubstr("1 hidden "));
}

TEST_F(BrepContents, FaceThatCannotBeReadIsCounted)
{
    static_cast<void>(WriteStep(BRepPrimAPI_MakeBox(1, 2, 3).Shape()));
    std::string text = Read("shape.step");
    // The face's surface becomes a direction.
    const std::string plane = NumberOf(text, "PLANE");
    const std::string direction = NumberOf(text, "DIRECTION");
    const auto face = text.find("ADVANCED_FACE(");
    const auto at = text.find(plane + ",", face);
    ASSERT_NE(at, std::string::npos);
    text.replace(at, plane.size(), direction);
    const Model model = ImportBrep(Write("bad.step", text), {});
    ASSERT_EQ(model.pieces.size(), 1U);
    EXPECT_EQ(model.pieces[0].faces.size(), 5U);
    EXPECT_EQ(LeftOutOf(model, "face that cannot be read"), 1U);
}

TEST_F(BrepContents, ColoursOfAllKindsOfStylesReachTheirFaces)
{
    static_cast<void>(WriteStep(BRepPrimAPI_MakeBox(1, 2, 3).Shape()));
    const std::string text = Read("shape.step");
    const std::string solid = NumberOf(text, "MANIFOLD_SOLID_BREP");
    const std::string face = NumberOf(text, "ADVANCED_FACE");
    const std::string styles =
        "#90001=SURFACE_STYLE_USAGE(.BOTH.,#90002);\n#90002=SURFACE_SIDE_STYLE('',(#90003));\n"
        "#90003=SURFACE_STYLE_FILL_AREA(#90004);\n#90004=FILL_AREA_STYLE('',(#90005));\n"
        "#90005=FILL_AREA_STYLE_COLOUR('',#90006);\n#90006=DRAUGHTING_PRE_DEFINED_COLOUR('red');\n"
        "#90007=PRESENTATION_STYLE_ASSIGNMENT((#90001));\n#90008=STYLED_ITEM('',(#90007)," +
        solid +
        ");\n"
        "#90011=SURFACE_STYLE_USAGE(.BOTH.,#90012);\n#90012=SURFACE_SIDE_STYLE('',(#90013));\n"
        "#90013=SURFACE_STYLE_RENDERING_WITH_PROPERTIES(.NORMAL_SHADING.,#90014,(#90015));\n"
        "#90014=COLOUR_RGB('',0.,0.,1.);\n#90015=SURFACE_STYLE_TRANSPARENT(0.75);\n"
        "#90016=PRESENTATION_STYLE_ASSIGNMENT((#90011));\n#90017=OVER_RIDING_STYLED_ITEM('',(#90016)," +
        face +
        ",#90008);\n"
        "#90020=MECHANICAL_DESIGN_GEOMETRIC_PRESENTATION_REPRESENTATION('',(#90008,#90017)," +
        NumberOf(text, "GEOMETRIC_REPRESENTATION_CONTEXT") + ");\n";
    const Model model = ImportBrep(Write("styles.step", WithEntities(text, styles)), {});
    ASSERT_EQ(model.pieces.size(), 2U);
    for (const Piece& piece : model.pieces) {
        const bool is_face = piece.faces.size() == 1;
        EXPECT_EQ(piece.color, is_face ? kBlueIndex : kRedIndex);
        EXPECT_NEAR(piece.alpha, is_face ? 0.25F : 1.0F, 1e-3F);
    }
}

TEST_F(BrepContents, CurvesOfAnnotationsAreDrawn)
{
    static_cast<void>(WriteStep(BRepPrimAPI_MakeBox(1, 2, 3).Shape()));
    const std::string text = Read("shape.step");
    const std::string path = Write(
        "note.step",
        WithEntities(text, "#90001=CARTESIAN_POINT('',(0.,0.,4.));\n#90002=CARTESIAN_POINT('',(7.,0.,4.));\n"
                           "#90003=POLYLINE('',(#90001,#90002));\n#90004=GEOMETRIC_CURVE_SET('',(#90003));\n"
                           "#90005=ANNOTATION_CURVE_OCCURRENCE('',(),#90004);\n"
                           "#90006=ANNOTATION_TEXT_OCCURRENCE('',(),$);\n"));
    const Model model = ImportBrep(path, {});
    ASSERT_EQ(model.pieces.size(), 2U);
    EXPECT_EQ(model.pieces[1].name, "annotations");
    Box box;
    for (const Segment& line : model.pieces[1].lines) {
        box.Add(line.from);
        box.Add(line.to);
    }
    EXPECT_NEAR(Length(box.min - Point{0, 0, 4}), 0.0, 1e-9);
    EXPECT_NEAR(Length(box.max - Point{7, 0, 4}), 0.0, 1e-9);
    EXPECT_EQ(LeftOutOf(model, "annotation"), 1U);
}

const char* const kTessellatedUnit =
    "#1=(LENGTH_UNIT()NAMED_UNIT(*)SI_UNIT(.CENTI.,.METRE.));\n"
    "#2=(NAMED_UNIT(*)PLANE_ANGLE_UNIT()SI_UNIT($,.RADIAN.));\n"
    "#3=(NAMED_UNIT(*)SI_UNIT($,.STERADIAN.)SOLID_ANGLE_UNIT());\n"
    "#4=(GEOMETRIC_REPRESENTATION_CONTEXT(3)GLOBAL_UNIT_ASSIGNED_CONTEXT((#1,#2,#3))"
    "REPRESENTATION_CONTEXT('',''));\n";

TEST_F(BrepContents, TessellatedSolidIsDrawnInItsUnitAndColour)
{
    // A tetrahedron with edges of 1 cm along the axes.
    const std::string path = WriteStepText(
        std::string(kTessellatedUnit) +
        "#10=COORDINATES_LIST('',4,((0.,0.,0.),(1.,0.,0.),(0.,1.,0.),(0.,0.,1.)));\n"
        "#11=TRIANGULATED_FACE('',#10,4,(),$,(),((1,3,2),(1,2,4)));\n"
        "#12=COMPLEX_TRIANGULATED_FACE('',#10,4,(),$,(1,4,3,2),((1,2,3)),((4,3,2)));\n"
        "#13=TESSELLATED_SOLID('tetrahedron',(#11,#12),$);\n"
        "#14=TESSELLATED_SHAPE_REPRESENTATION('',(#13),#4);\n"
        "#20=COLOUR_RGB('',0.,0.,1.);\n#21=FILL_AREA_STYLE_COLOUR('',#20);\n#22=FILL_AREA_STYLE('',(#21));\n"
        "#23=SURFACE_STYLE_FILL_AREA(#22);\n#24=SURFACE_SIDE_STYLE('',(#23));\n"
        "#25=SURFACE_STYLE_USAGE(.BOTH.,#24);\n#26=PRESENTATION_STYLE_ASSIGNMENT((#25));\n"
        "#27=STYLED_ITEM('',(#26),#13);\n");
    const Model model = ImportBrep(path, {});
    ASSERT_EQ(model.pieces.size(), 1U);
    const Piece& piece = model.pieces[0];
    EXPECT_EQ(piece.faces.size(), 4U);
    EXPECT_EQ(piece.name, "tetrahedron");
    EXPECT_EQ(piece.color, kBlueIndex);
    EXPECT_TRUE(ClosesToABody(piece));
    // A sixth of a cube of 10 mm.
    EXPECT_NEAR(VolumeOf(piece), 1000.0 / 6.0, 1e-9);
    EXPECT_TRUE(model.left_out.empty());
}

TEST_F(BrepContents, TessellatedAnnotationIsDrawn)
{
    const std::string path = WriteStepText(std::string(kTessellatedUnit) +
                                           "#10=COORDINATES_LIST('',3,((0.,0.,0.),(1.,0.,0.),(0.,1.,0.)));\n"
                                           "#11=TESSELLATED_CURVE_SET('',#10,((1,2,3),(1,9)));\n"
                                           "#12=TESSELLATED_GEOMETRIC_SET('',(#11));\n"
                                           "#13=TESSELLATED_ANNOTATION_OCCURRENCE('',(),#12);\n");
    const Model model = ImportBrep(path, {});
    ASSERT_EQ(model.pieces.size(), 1U);
    ASSERT_EQ(model.pieces[0].lines.size(), 2U);
    EXPECT_EQ(model.pieces[0].lines[1].from, (Point{10, 0, 0}));
    EXPECT_EQ(model.pieces[0].lines[1].to, (Point{0, 10, 0}));
}

TEST_F(BrepContents, TessellatedItemsThatReferToThemselvesAreReadOnce)
{
    const std::string path = WriteStepText(std::string(kTessellatedUnit) +
                                           "#10=COORDINATES_LIST('',3,((0.,0.,0.),(1.,0.,0.),(0.,1.,0.)));\n"
                                           "#11=TRIANGULATED_FACE('',#10,3,(),$,(),((1,2,3)));\n"
                                           "#12=TESSELLATED_GEOMETRIC_SET('',(#12,#11,#12,#11,#12));\n"
                                           "#14=TESSELLATED_SHAPE_REPRESENTATION('',(#12,#12,#11),#4);\n");
    const Model model = ImportBrep(path, {});
    EXPECT_EQ(model.FaceCount(), 1U);
}

} // namespace
} // namespace viewer
