// Writes the files whose loading compare.py times: loading_files FOLDER. Files that exist already are kept.
#include <BRepAlgoAPI_Cut.hxx>
#include <BRepAlgoAPI_Fuse.hxx>
#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepBuilderAPI_MakePolygon.hxx>
#include <BRepBuilderAPI_MakeWire.hxx>
#include <BRepFilletAPI_MakeFillet.hxx>
#include <BRepLib.hxx>
#include <BRepOffsetAPI_MakePipeShell.hxx>
#include <BRepOffsetAPI_ThruSections.hxx>
#include <BRepPrimAPI_MakeBox.hxx>
#include <BRepPrimAPI_MakeCone.hxx>
#include <BRepPrimAPI_MakeCylinder.hxx>
#include <BRep_Builder.hxx>
#include <BRep_Tool.hxx>
#include <Geom2d_Line.hxx>
#include <Geom_CylindricalSurface.hxx>
#include <IGESControl_Controller.hxx>
#include <IGESControl_Writer.hxx>
#include <Message.hxx>
#include <Message_Messenger.hxx>
#include <Quantity_Color.hxx>
#include <STEPCAFControl_Controller.hxx>
#include <STEPCAFControl_Writer.hxx>
#include <Standard_Failure.hxx>
#include <TDocStd_Document.hxx>
#include <TopExp.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopTools_ListOfShape.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>
#include <XCAFApp_Application.hxx>
#include <XCAFDoc_ColorTool.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>
#include <gp_Ax2.hxx>
#include <gp_Elips.hxx>
#include <gp_Trsf.hxx>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <numbers>
#include <stdexcept>
#include <string>

namespace
{

using std::numbers::pi;

TopLoc_Location MovedBy(double x, double y, double z)
{
    gp_Trsf move;
    move.SetTranslation(gp_Vec(x, y, z));
    return {move};
}

gp_Ax2 AxisAt(double x, double y, double z)
{
    return {gp_Pnt(x, y, z), gp::DZ()};
}

/// A document of parts and assemblies, written as STEP.
class StepDocument
{
  public:
    StepDocument()
    {
        STEPCAFControl_Controller::Init();
        XCAFApp_Application::GetApplication()->NewDocument("BinXCAF", document_);
        shapes_ = XCAFDoc_DocumentTool::ShapeTool(document_->Main());
    }

    TDF_Label AddPart(const TopoDS_Shape& shape, const Quantity_Color& color)
    {
        const TDF_Label part = shapes_->AddShape(shape, Standard_False);
        XCAFDoc_DocumentTool::ColorTool(document_->Main())->SetColor(part, color, XCAFDoc_ColorSurf);
        return part;
    }
    TDF_Label AddAssembly() { return shapes_->NewShape(); }
    void Place(const TDF_Label& assembly, const TDF_Label& part, double x, double y, double z)
    {
        shapes_->AddComponent(assembly, part, MovedBy(x, y, z));
    }

    void Write(const std::string& path)
    {
        shapes_->UpdateAssemblies();
        STEPCAFControl_Writer writer;
        if (!writer.Transfer(document_) || writer.Write(path.c_str()) != IFSelect_RetDone)
            throw std::runtime_error("cannot be written");
    }

  private:
    Handle(TDocStd_Document) document_;
    Handle(XCAFDoc_ShapeTool) shapes_;
};

void WriteStep(const TopoDS_Shape& shape, const std::string& path)
{
    StepDocument document;
    document.AddPart(shape, Quantity_NOC_STEELBLUE);
    document.Write(path);
}

/// A plate with a square of bosses, each rounded at its twelve edges and around its foot.
void WriteFillets(const std::string& path)
{
    constexpr int kSide = 11;
    constexpr double kPitch = 10.0;
    constexpr double kBoss = 5.0;
    TopTools_ListOfShape plate;
    plate.Append(BRepPrimAPI_MakeBox(gp_Pnt(-2, -2, -4), kSide * kPitch, kSide * kPitch, 4.0).Shape());
    TopTools_ListOfShape bosses;
    for (int i = 0; i < kSide; ++i)
        for (int k = 0; k < kSide; ++k)
            bosses.Append(
                BRepPrimAPI_MakeBox(gp_Pnt(kPitch * i, kPitch * k, -1.0), kBoss, kBoss, 1.0 + kBoss).Shape());
    BRepAlgoAPI_Fuse fuse;
    fuse.SetArguments(plate);
    fuse.SetTools(bosses);
    fuse.Build();
    TopTools_IndexedMapOfShape edges;
    TopExp::MapShapes(fuse.Shape(), TopAbs_EDGE, edges);
    BRepFilletAPI_MakeFillet fillet(fuse.Shape());
    for (int i = 1; i <= edges.Extent(); ++i) {
        const TopoDS_Edge& edge = TopoDS::Edge(edges(i));
        const gp_Pnt first = BRep_Tool::Pnt(TopExp::FirstVertex(edge));
        const gp_Pnt last = BRep_Tool::Pnt(TopExp::LastVertex(edge));
        if (std::min(first.Z(), last.Z()) > -0.5 && first.Distance(last) < kBoss + 0.1)
            fillet.Add(0.4, edge);
    }
    WriteStep(fillet.Shape(), path);
}

/// 20 groups of 20 plates, each with a hole and two bolts.
void WriteAssembly(const std::string& path)
{
    constexpr int kGroups = 20;
    constexpr int kPlates = 20;
    StepDocument document;
    const TopoDS_Shape plate = BRepAlgoAPI_Cut(BRepPrimAPI_MakeBox(30.0, 20.0, 4.0).Shape(),
                                               BRepPrimAPI_MakeCylinder(AxisAt(15, 10, -1), 5.0, 6.0).Shape())
                                   .Shape();
    const TopoDS_Shape head = BRepPrimAPI_MakeCylinder(AxisAt(0, 0, 4), 3.0, 2.0).Shape();
    const TopoDS_Shape bolt =
        BRepAlgoAPI_Fuse(BRepPrimAPI_MakeCylinder(AxisAt(0, 0, -6), 1.5, 10.0).Shape(), head).Shape();
    const TDF_Label plate_part = document.AddPart(plate, Quantity_NOC_GRAY60);
    const TDF_Label bolt_part = document.AddPart(bolt, Quantity_NOC_GOLD);
    const TDF_Label whole = document.AddAssembly();
    const TDF_Label group = document.AddAssembly();
    for (int i = 0; i < kPlates; ++i) {
        const double z = 20.0 * i;
        document.Place(group, plate_part, 0, 0, z);
        document.Place(group, bolt_part, 5, 5, z);
        document.Place(group, bolt_part, 25, 15, z);
    }
    for (int i = 0; i < kGroups; ++i)
        document.Place(whole, group, 40.0 * (i % 5), 30.0 * static_cast<int>(i / 5), 0);
    document.Write(path);
}

/// A triangular profile, swept along a helix of 25 turns around a rod.
void WriteThread(const std::string& path)
{
    constexpr double kRadius = 10.0;
    constexpr double kPitch = 3.0;
    constexpr int kTurns = 25;
    const auto helix = [&](double radius) {
        const Handle(Geom_CylindricalSurface) surface =
            new Geom_CylindricalSurface(gp_Ax3(gp::XOY()), radius);
        const Handle(Geom2d_Line) line = new Geom2d_Line(gp_Pnt2d(0, 0), gp_Dir2d(2.0 * pi, kPitch));
        const TopoDS_Edge edge =
            BRepBuilderAPI_MakeEdge(line, surface, 0.0, kTurns * std::hypot(2.0 * pi, kPitch)).Edge();
        BRepLib::BuildCurve3d(edge);
        return BRepBuilderAPI_MakeWire(edge).Wire();
    };
    BRepOffsetAPI_MakePipeShell pipe(helix(kRadius));
    pipe.SetMode(helix(kRadius + 5.0), Standard_True);
    BRepBuilderAPI_MakePolygon profile(gp_Pnt(kRadius - 0.3, 0, -1.2), gp_Pnt(kRadius + 2, 0, 0),
                                       gp_Pnt(kRadius - 0.3, 0, 1.2), Standard_True);
    pipe.Add(profile.Wire());
    pipe.Build();
    pipe.MakeSolid();
    TopoDS_Compound whole;
    BRep_Builder().MakeCompound(whole);
    BRep_Builder().Add(whole, pipe.Shape());
    BRep_Builder().Add(whole, BRepPrimAPI_MakeCylinder(AxisAt(0, 0, -10), kRadius, 95.0).Shape());
    WriteStep(whole, path);
}

/// 1 200 cones, by three levels of assemblies.
void WriteCones(const std::string& path)
{
    StepDocument document;
    const TDF_Label cone =
        document.AddPart(BRepPrimAPI_MakeCone(2.0, 1.0, 5.0).Shape(), Quantity_NOC_ORANGERED);
    const TDF_Label row = document.AddAssembly();
    const TDF_Label layer = document.AddAssembly();
    const TDF_Label block = document.AddAssembly();
    for (int i = 0; i < 12; ++i)
        document.Place(row, cone, 5.0 * i, 0, 0);
    for (int i = 0; i < 10; ++i) {
        document.Place(layer, row, 0, 5.0 * i, 0);
        document.Place(block, layer, 0, 0, 8.0 * i);
    }
    document.Write(path);
}

/// A lofted hull with two rows of round windows, as surfaces without solids.
void WriteFuselage(const std::string& path)
{
    constexpr int kSections = 24;
    constexpr double kLength = 240.0;
    BRepOffsetAPI_ThruSections loft(Standard_False);
    for (int i = 0; i <= kSections; ++i) {
        const double part = static_cast<double>(i) / kSections;
        const double size = 1.0 + 19.0 * std::pow(std::sin(pi * std::pow(part, 0.7)), 0.6);
        const gp_Ax2 axis(gp_Pnt(kLength * part, 0, 6.0 * part * part), gp::DX(), gp::DZ());
        loft.AddWire(
            BRepBuilderAPI_MakeWire(BRepBuilderAPI_MakeEdge(gp_Elips(axis, size, 0.9 * size)).Edge()));
    }
    loft.Build();
    TopTools_ListOfShape hull;
    hull.Append(loft.Shape());
    TopTools_ListOfShape windows;
    for (int i = 0; i < 40; ++i) {
        const gp_Ax2 axis(gp_Pnt(50.0 + 3.6 * i, -40, 6), gp::DY());
        windows.Append(BRepPrimAPI_MakeCylinder(axis, 1.2, 80.0).Shape());
    }
    BRepAlgoAPI_Cut cut;
    cut.SetArguments(hull);
    cut.SetTools(windows);
    cut.Build();
    IGESControl_Controller::Init();
    IGESControl_Writer writer("MM", 0);
    writer.AddShape(cut.Shape());
    writer.ComputeModel();
    if (!writer.Write(path.c_str()))
        throw std::runtime_error("cannot be written");
}

/// A knobbly ball of 70 000 triangles, in the binary form.
void WriteBall(const std::string& path)
{
    constexpr int kRings = 175;
    constexpr int kSides = 200;
    const auto point = [&](int ring, int side) {
        const double u = pi * ring / kRings;
        const double v = 2.0 * pi * (side % kSides) / kSides;
        const double r = 50.0 + 3.0 * std::sin(9.0 * u) * std::cos(8.0 * v);
        return std::array{static_cast<float>(r * std::sin(u) * std::cos(v)),
                          static_cast<float>(r * std::sin(u) * std::sin(v)),
                          static_cast<float>(r * std::cos(u))};
    };
    std::ofstream file(path, std::ios::binary);
    const auto put = [&](const auto& value) {
        file.write(reinterpret_cast<const char*>(&value), sizeof(value));
    };
    put(std::array<char, 80>{});
    put(std::uint32_t{2 * kRings * kSides});
    const auto put_triangle = [&](const auto& a, const auto& b, const auto& c) {
        put(std::array<float, 3>{});
        put(a);
        put(b);
        put(c);
        put(std::uint16_t{0});
    };
    for (int ring = 0; ring < kRings; ++ring)
        for (int side = 0; side < kSides; ++side) {
            put_triangle(point(ring, side), point(ring + 1, side), point(ring + 1, side + 1));
            put_triangle(point(ring, side), point(ring + 1, side + 1), point(ring, side + 1));
        }
    if (!file.flush())
        throw std::runtime_error("cannot be written");
}

struct File {
    const char* name;
    void (*write)(const std::string& path);
};

constexpr std::array kFiles = {
    File{"fillets.step", WriteFillets},   File{"assembly.step", WriteAssembly},
    File{"thread.step", WriteThread},     File{"cones.step", WriteCones},
    File{"fuselage.iges", WriteFuselage}, File{"ball.stl", WriteBall},
};

/// Writes a file under another name first, so that an interrupted run leaves no half of it.
void WriteWhole(const File& file, const std::filesystem::path& folder)
{
    const std::filesystem::path path = folder / file.name;
    if (std::filesystem::exists(path))
        return;
    const std::filesystem::path half = folder / ("half-" + std::string(file.name));
    file.write(half.string());
    std::filesystem::rename(half, path);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fputs("usage: loading_files FOLDER\n", stderr);
        return 2;
    }
    Message::DefaultMessenger()->ChangePrinters().Clear();
    const char* name = "";
    try {
        std::filesystem::create_directories(argv[1]);
        for (const File& file : kFiles) {
            name = file.name;
            WriteWhole(file, argv[1]);
        }
        return 0;
    } catch (const Standard_Failure& failure) {
        std::fprintf(stderr, "loading_files: %s: %s\n", name, failure.GetMessageString());
    } catch (const std::exception& error) {
        std::fprintf(stderr, "loading_files: %s: %s\n", name, error.what());
    }
    return 1;
}
