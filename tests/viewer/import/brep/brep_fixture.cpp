#include "tests/viewer/import/brep/brep_fixture.h"

#include "viewer/scene/feature_edges.h"
#include "viewer/text/file_error.h"

#include <BRepGProp.hxx>
#include <BRepTools.hxx>
#include <BRep_Tool.hxx>
#include <GProp_GProps.hxx>
#include <IGESCAFControl_Writer.hxx>
#include <IGESControl_Controller.hxx>
#include <Quantity_ColorRGBA.hxx>
#include <STEPCAFControl_Writer.hxx>
#include <TDF_LabelSequence.hxx>
#include <TDataStd_Name.hxx>
#include <TopExp.hxx>
#include <TopExp_Explorer.hxx>
#include <TopTools_IndexedMapOfShape.hxx>
#include <TopTools_MapOfShape.hxx>
#include <TopoDS.hxx>
#include <XCAFApp_Application.hxx>
#include <XCAFDoc_ColorTool.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_GraphNode.hxx>
#include <XCAFDoc_ShapeTool.hxx>

#include <algorithm>
#include <set>
#include <tuple>
#include <vector>

namespace viewer
{

namespace
{

Handle(XCAFDoc_ShapeTool) ShapesOf(const Handle(TDocStd_Document) & document)
{
    return XCAFDoc_DocumentTool::ShapeTool(document->Main());
}

Handle(XCAFDoc_ColorTool) ColorsOf(const Handle(TDocStd_Document) & document)
{
    return XCAFDoc_DocumentTool::ColorTool(document->Main());
}

void SetName(const TDF_Label& label, const std::string& name)
{
    TDataStd_Name::Set(label, TCollection_ExtendedString(name.c_str(), Standard_True));
}

Quantity_ColorRGBA ColorOf(double red, double green, double blue, float alpha)
{
    return {Quantity_Color(red, green, blue, Quantity_TOC_sRGB), alpha};
}

std::tuple<double, double, double> KeyOf(const Point& point)
{
    return {point.x, point.y, point.z};
}

} // namespace

BrepTestDocument::BrepTestDocument()
{
    XCAFApp_Application::GetApplication()->NewDocument("BinXCAF", document_);
}

BrepTestDocument::~BrepTestDocument()
{
    XCAFApp_Application::GetApplication()->Close(document_);
}

TDF_Label BrepTestDocument::AddPart(const TopoDS_Shape& shape, const std::string& name)
{
    const TDF_Label label = ShapesOf(document_)->AddShape(shape, Standard_False);
    SetName(label, name);
    return label;
}

TDF_Label BrepTestDocument::AddAssembly(const std::string& name)
{
    const TDF_Label label = ShapesOf(document_)->NewShape();
    SetName(label, name);
    return label;
}

TDF_Label BrepTestDocument::Place(const TDF_Label& assembly, const TDF_Label& part,
                                  const TopLoc_Location& location, const std::string& name)
{
    const TDF_Label component = ShapesOf(document_)->AddComponent(assembly, part, location);
    if (!name.empty())
        SetName(component, name);
    return component;
}

void BrepTestDocument::SetColor(const TDF_Label& label, double red, double green, double blue, float alpha)
{
    ColorsOf(document_)->SetColor(label, ColorOf(red, green, blue, alpha), XCAFDoc_ColorSurf);
}

void BrepTestDocument::SetColorOf(const TDF_Label& part, const TopoDS_Shape& shape, double red, double green,
                                  double blue)
{
    SetColor(ShapesOf(document_)->AddSubShape(part, shape), red, green, blue);
}

void BrepTestDocument::SetColorOfUse(const std::vector<TDF_Label>& components, double red, double green,
                                     double blue)
{
    TDF_LabelSequence path;
    for (const TDF_Label& component : components)
        path.Append(component);
    Handle(XCAFDoc_GraphNode) use;
    ASSERT_TRUE(ShapesOf(document_)->SetSHUO(path, use));
    SetColor(use->Label(), red, green, blue);
}

void BrepTestDocument::SetNameOf(const TDF_Label& part, const TopoDS_Shape& shape, const std::string& name)
{
    SetName(ShapesOf(document_)->AddSubShape(part, shape), name);
}

void BrepTestDocument::Hide(const TDF_Label& label)
{
    ColorsOf(document_)->SetVisibility(label, Standard_False);
}

std::string BrepTest::WriteBrep(const TopoDS_Shape& shape, const std::string& name) const
{
    const std::string path = PathOf(name);
    EXPECT_TRUE(BRepTools::Write(shape, path.c_str()));
    return path;
}

std::string BrepTest::WriteStep(BrepTestDocument& document, const std::string& name) const
{
    const std::string path = PathOf(name);
    ShapesOf(document.Get())->UpdateAssemblies();
    STEPCAFControl_Writer writer;
    EXPECT_TRUE(writer.Transfer(document.Get(), STEPControl_AsIs));
    EXPECT_EQ(writer.Write(path.c_str()), IFSelect_RetDone);
    return path;
}

std::string BrepTest::WriteStep(const TopoDS_Shape& shape, const std::string& name) const
{
    BrepTestDocument document;
    document.AddPart(shape, "part");
    return WriteStep(document, name);
}

std::string BrepTest::WriteIges(BrepTestDocument& document) const
{
    const std::string path = PathOf("colours.igs");
    IGESControl_Controller::Init();
    IGESCAFControl_Writer writer;
    EXPECT_TRUE(writer.Transfer(document.Get()));
    EXPECT_TRUE(writer.Write(path.c_str()));
    return path;
}

std::string BrepTest::WriteIges(const TopoDS_Shape& shape, bool as_solids) const
{
    const std::string path = PathOf("shape.igs");
    IGESControl_Controller::Init();
    IGESControl_Writer writer("MM", as_solids ? 1 : 0);
    EXPECT_TRUE(writer.AddShape(shape));
    writer.ComputeModel();
    EXPECT_TRUE(writer.Write(path.c_str()));
    return path;
}

std::string BrepTest::ErrorOf(const std::string& path)
{
    try {
        static_cast<void>(ImportBrep(path, {}));
    } catch (const FileError& error) {
        return error.what();
    }
    return "read without an error";
}

TopLoc_Location MovedBy(double x, double y, double z)
{
    gp_Trsf move;
    move.SetTranslation(gp_Vec(x, y, z));
    return {move};
}

double VolumeOf(const Piece& piece)
{
    double sixfold = 0.0;
    const Point origin = piece.faces.at(0).corners.at(0);
    for (const ModelFace& face : piece.faces)
        for (std::size_t i = 1; i + 1 < face.corners.size(); ++i)
            // Corners run clockwise.
            sixfold -=
                Dot(face.corners[0] - origin, Cross(face.corners[i] - origin, face.corners[i + 1] - origin));
    return sixfold / 6.0;
}

double AreaOf(const Piece& piece)
{
    double doubled = 0.0;
    for (const ModelFace& face : piece.faces)
        for (std::size_t i = 1; i + 1 < face.corners.size(); ++i)
            doubled +=
                Length(Cross(face.corners[i] - face.corners[0], face.corners[i + 1] - face.corners[0]));
    return doubled / 2.0;
}

Box BoxOfFaces(const Piece& piece)
{
    Box box;
    for (const ModelFace& face : piece.faces)
        for (const Point& corner : face.corners)
            box.Add(corner);
    return box;
}

double ExactVolumeOf(const TopoDS_Shape& shape)
{
    GProp_GProps properties;
    BRepGProp::VolumeProperties(shape, properties);
    return properties.Mass();
}

double ExactAreaOf(const TopoDS_Shape& shape)
{
    GProp_GProps properties;
    BRepGProp::SurfaceProperties(shape, properties);
    return properties.Mass();
}

std::size_t OwnEdgesOf(const TopoDS_Shape& shape)
{
    TopTools_IndexedMapOfShape edges;
    TopExp::MapShapes(shape, TopAbs_EDGE, edges);
    TopTools_MapOfShape others;
    for (int i = 1; i <= edges.Extent(); ++i)
        if (BRep_Tool::Degenerated(TopoDS::Edge(edges(i))))
            others.Add(edges(i));
    for (TopExp_Explorer face(shape, TopAbs_FACE); face.More(); face.Next()) {
        TopTools_MapOfShape seen;
        for (TopExp_Explorer edge(face.Current(), TopAbs_EDGE); edge.More(); edge.Next())
            if (!seen.Add(edge.Current()))
                others.Add(edge.Current());
    }
    return static_cast<std::size_t>(edges.Extent() - others.Extent());
}

std::size_t EdgesOf(const Piece& piece, const TopoDS_Shape& shape)
{
    constexpr double kSame = 1e-6;
    TopTools_IndexedMapOfShape vertices;
    TopExp::MapShapes(shape, TopAbs_VERTEX, vertices);
    const auto is_vertex = [&](const Point& point) {
        for (int i = 1; i <= vertices.Extent(); ++i)
            if (BRep_Tool::Pnt(TopoDS::Vertex(vertices(i))).Distance({point.x, point.y, point.z}) < kSame)
                return true;
        return false;
    };
    std::size_t ends = 0;
    for (const Segment& segment : piece.edges.value())
        ends += (is_vertex(segment.from) ? 1U : 0U) + (is_vertex(segment.to) ? 1U : 0U);
    return ends / 2;
}

bool EdgesRunAlongFaces(const Piece& piece)
{
    using Key = std::tuple<double, double, double>;
    std::set<std::pair<Key, Key>> sides;
    for (const ModelFace& face : piece.faces)
        for (std::size_t i = 0; i < face.corners.size(); ++i)
            sides.emplace(KeyOf(face.corners[i]), KeyOf(face.corners[(i + 1) % face.corners.size()]));
    return std::all_of(piece.edges->begin(), piece.edges->end(), [&](const Segment& segment) {
        return sides.contains({KeyOf(segment.from), KeyOf(segment.to)}) ||
               sides.contains({KeyOf(segment.to), KeyOf(segment.from)});
    });
}

bool FacesAreConvex(const Piece& piece)
{
    constexpr double kStraight = 1e-6;
    for (const ModelFace& face : piece.faces) {
        const std::size_t count = face.corners.size();
        for (std::size_t i = 0; i < count; ++i) {
            const Point in = face.corners[(i + 1) % count] - face.corners[i];
            const Point out = face.corners[(i + 2) % count] - face.corners[(i + 1) % count];
            // Corners run clockwise about the normal.
            if (Dot(Cross(in, out), face.normal) > kStraight * Length(in) * Length(out))
                return false;
        }
    }
    return true;
}

bool ClosesToABody(const Piece& piece)
{
    return MakeSolid(piece, [](const Point& point) { return point; }).has_value();
}

std::size_t ShownEdgesOf(const Piece& piece)
{
    auto body = MakeSolid(piece, [](const Point& point) { return point; });
    std::vector<AModeler::Edge*> edges;
    std::vector<AModeler::Vertex*> vertices;
    if (body)
        body->getPhysicalEdgesAndVertices(true, false, edges, vertices);
    return edges.size();
}

} // namespace viewer
