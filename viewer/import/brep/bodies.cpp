#include "viewer/import/brep/bodies.h"

#include "platform/host/cm/color.h"
#include "viewer/text/file_error.h"
#include "viewer/text/text.h"

#include <BRepBndLib.hxx>
#include <BRepTools.hxx>
#include <BRep_Builder.hxx>
#include <Bnd_Box.hxx>
#include <IGESCAFControl_Reader.hxx>
#include <IGESControl_Controller.hxx>
#include <Interface_Static.hxx>
#include <Message_ProgressScope.hxx>
#include <Quantity_ColorRGBA.hxx>
#include <STEPCAFControl_Controller.hxx>
#include <STEPCAFControl_Reader.hxx>
#include <TDF_LabelSequence.hxx>
#include <TDF_Tool.hxx>
#include <TDataStd_Name.hxx>
#include <TDocStd_Document.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS_Compound.hxx>
#include <XCAFApp_Application.hxx>
#include <XCAFDoc_ColorTool.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_GraphNode.hxx>
#include <XCAFDoc_ShapeTool.hxx>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <utility>

namespace viewer
{

namespace
{

/// A document of the library. The library's application holds it until it is closed.
class Document
{
  public:
    Document() : application_(XCAFApp_Application::GetApplication())
    {
        application_->NewDocument("BinXCAF", document_);
    }
    Document(const Document&) = delete;
    Document& operator=(const Document&) = delete;
    ~Document() { application_->Close(document_); }

    Handle(TDocStd_Document) & Get() { return document_; }

  private:
    Handle(XCAFApp_Application) application_;
    Handle(TDocStd_Document) document_;
};

void ReadStep(const std::string& path, Handle(TDocStd_Document) & document,
              const Message_ProgressRange& progress)
{
    STEPCAFControl_Controller::Init();
    Interface_Static::SetCVal("xstep.cascade.unit", "MM");
    Interface_Static::SetIVal("read.stepcaf.subshapes.name", 1);
    STEPCAFControl_Reader reader;
    reader.SetColorMode(Standard_True);
    reader.SetNameMode(Standard_True);
    reader.SetSHUOMode(Standard_True);
    reader.SetLayerMode(Standard_False);
    reader.SetPropsMode(Standard_False);
    reader.SetGDTMode(Standard_False);
    reader.SetMatMode(Standard_False);
    reader.SetViewMode(Standard_False);
    if (reader.ReadFile(path.c_str()) != IFSelect_RetDone)
        throw FileError(path, "damaged: is not a STEP file that can be parsed");
    if (!reader.Transfer(document, progress))
        throw FileError(path, "holds no geometry");
}

void ReadIges(const std::string& path, Handle(TDocStd_Document) & document,
              const Message_ProgressRange& progress)
{
    IGESControl_Controller::Init();
    Interface_Static::SetCVal("xstep.cascade.unit", "MM");
    IGESCAFControl_Reader reader;
    reader.SetColorMode(Standard_True);
    reader.SetNameMode(Standard_True);
    reader.SetLayerMode(Standard_False);
    if (reader.ReadFile(path.c_str()) != IFSelect_RetDone)
        throw FileError(path, "damaged: is not an IGES file that can be parsed");
    if (!reader.Transfer(document, progress))
        throw FileError(path, "holds no geometry");
}

void ReadShape(const std::string& path, const Handle(TDocStd_Document) & document,
               const Message_ProgressRange& progress)
{
    TopoDS_Shape shape;
    if (!BRepTools::Read(shape, path.c_str(), BRep_Builder(), progress))
        throw FileError(path, "damaged: is not a BREP file that can be parsed");
    if (shape.IsNull())
        throw FileError(path, "holds no geometry");
    XCAFDoc_DocumentTool::ShapeTool(document->Main())->AddShape(shape, Standard_False);
}

/// The label's name in UTF-8, in one line.
std::string NameOf(const TDF_Label& label)
{
    Handle(TDataStd_Name) name;
    if (!label.FindAttribute(TDataStd_Name::GetID(), name))
        return {};
    return std::string(Trimmed(OneLine(TCollection_AsciiString(name->Get()).ToCString())));
}

/// The name of an instance; empty if a program generated it.
std::string InstanceNameOf(const TDF_Label& label)
{
    std::string name = NameOf(label);
    const bool is_numbered = name.find_first_not_of("0123456789") == std::string::npos;
    return is_numbered || name.starts_with("NAUO") || name.starts_with("=>[") ? std::string() : name;
}

BrepColor ColorFrom(const Quantity_ColorRGBA& color)
{
    std::array<double, 3> values{};
    color.GetRGB().Values(values[0], values[1], values[2], Quantity_TOC_sRGB);
    const auto channel = [&](std::size_t i) {
        return static_cast<unsigned char>(std::lround(std::clamp(values.at(i), 0.0, 1.0) * 255.0));
    };
    return {NearestColorIndex(channel(0), channel(1), channel(2)), std::clamp(color.Alpha(), 0.0F, 1.0F)};
}

/// The properties that an assembly's components inherit.
struct Inherited {
    gp_Trsf placement;
    std::vector<std::string> parents;
    std::optional<BrepColor> color;
    bool overrides_colors = false;
    TDF_LabelSequence path; ///< the components from the root
    std::string name;       ///< of the instance; empty if it has none
};

class AssemblyWalk
{
  public:
    explicit AssemblyWalk(const Handle(TDocStd_Document) & document)
        : shapes_(XCAFDoc_DocumentTool::ShapeTool(document->Main())),
          colors_(XCAFDoc_DocumentTool::ColorTool(document->Main()))
    {
    }

    BrepContent Walk()
    {
        TDF_LabelSequence roots;
        shapes_->GetFreeShapes(roots);
        FindGroups(roots);
        for (const TDF_Label& root : roots)
            Visit(root, {}, 0);
        return std::move(content_);
    }

  private:
    /// The product of a component; a label that is not a component is returned unchanged.
    static TDF_Label ProductOf(const TDF_Label& label)
    {
        TDF_Label product;
        return XCAFDoc_ShapeTool::GetReferredShape(label, product) ? product : label;
    }

    static std::string KeyOf(const TDF_Label& label)
    {
        TCollection_AsciiString entry;
        TDF_Tool::Entry(label, entry);
        return entry.ToCString();
    }

    /// Finds the groups: the products on the first level that has several components.
    void FindGroups(TDF_LabelSequence level)
    {
        while (level.Size() == 1 && XCAFDoc_ShapeTool::IsAssembly(ProductOf(level.First()))) {
            const TDF_Label assembly = ProductOf(level.First());
            level.Clear();
            XCAFDoc_ShapeTool::GetComponents(assembly, level);
        }
        if (level.Size() < 2)
            return;
        for (const TDF_Label& label : level) {
            const TDF_Label product = ProductOf(label);
            if (!groups_.emplace(KeyOf(product), content_.group_names.size()).second)
                continue;
            content_.group_names.push_back(NameOf(product));
        }
    }

    std::optional<BrepColor> ColorOf(const TDF_Label& label) const
    {
        Quantity_ColorRGBA color;
        for (const XCAFDoc_ColorType type : {XCAFDoc_ColorSurf, XCAFDoc_ColorGen, XCAFDoc_ColorCurv})
            if (colors_->GetColor(label, type, color))
                return ColorFrom(color);
        return std::nullopt;
    }

    /// The colour that an assembly assigns to an instance on any level below it.
    std::optional<BrepColor> ColorOfUsage(const TDF_LabelSequence& path) const
    {
        TDF_LabelSequence usage = path;
        for (; usage.Size() >= 2; usage.Remove(1)) {
            Handle(XCAFDoc_GraphNode) node;
            if (!XCAFDoc_ShapeTool::FindSHUO(usage, node))
                continue;
            if (const auto color = ColorOf(node->Label()))
                return color;
        }
        return std::nullopt;
    }

    void Visit(const TDF_Label& label, Inherited inherited, std::size_t group)
    {
        if (!colors_->IsVisible(label))
            return;
        if (const auto known = groups_.find(KeyOf(ProductOf(label))); known != groups_.end() && !is_in_group_)
            return VisitGroup(label, inherited, known->second);
        if (XCAFDoc_ShapeTool::IsReference(label)) {
            inherited.placement =
                inherited.placement * XCAFDoc_ShapeTool::GetLocation(label).Transformation();
            inherited.path.Append(label);
            inherited.name = InstanceNameOf(label);
            auto color = ColorOfUsage(inherited.path);
            if (!color)
                color = ColorOf(label);
            if (color && !inherited.overrides_colors) {
                inherited.color = color;
                inherited.overrides_colors = true;
            }
            return Visit(ProductOf(label), std::move(inherited), group);
        }
        if (const auto color = ColorOf(label); color && !inherited.overrides_colors)
            inherited.color = color;
        if (inherited.name.empty())
            inherited.name = NameOf(label);
        if (!XCAFDoc_ShapeTool::IsAssembly(label))
            return AddPart(label, inherited, group);
        inherited.parents.push_back(std::exchange(inherited.name, {}));
        TDF_LabelSequence components;
        XCAFDoc_ShapeTool::GetComponents(label, components);
        for (const TDF_Label& component : components)
            Visit(component, inherited, group);
    }

    void VisitGroup(const TDF_Label& label, const Inherited& inherited, std::size_t group)
    {
        is_in_group_ = true;
        Visit(label, inherited, group);
        is_in_group_ = false;
    }

    void AddPart(const TDF_Label& label, const Inherited& inherited, std::size_t group)
    {
        const TopoDS_Shape part = XCAFDoc_ShapeTool::GetShape(label);
        if (part.IsNull())
            return;
        const auto labels = std::make_shared<BrepLabels>();
        NCollection_DataMap<TopoDS_Shape, std::string, TopTools_ShapeMapHasher> names;
        TDF_LabelSequence inner;
        XCAFDoc_ShapeTool::GetSubShapes(label, inner);
        for (const TDF_Label& sub_label : inner) {
            const TopoDS_Shape shape = XCAFDoc_ShapeTool::GetShape(sub_label);
            if (const auto color = ColorOf(sub_label))
                labels->colors.Bind(shape, *color);
            names.Bind(shape, NameOf(sub_label));
        }
        for (const TopoDS_Shape& shape : BodiesOf(part, *labels)) {
            BrepBody body{shape,           inherited.placement,        inherited.name, inherited.parents,
                          inherited.color, inherited.overrides_colors, labels,         group};
            if (const std::string* name = names.Seek(shape);
                name != nullptr && !name->empty() && !shape.IsSame(part)) {
                body.parents.push_back(std::exchange(body.name, *name));
            }
            if (const BrepColor* color = labels->colors.Seek(shape);
                color != nullptr && !body.overrides_colors)
                body.color = *color;
            content_.bodies.push_back(std::move(body));
        }
    }

    static std::vector<TopoDS_Shape> BodiesOf(const TopoDS_Shape& part, const BrepLabels& labels)
    {
        std::vector<TopoDS_Shape> bodies;
        const auto add_each = [&](TopAbs_ShapeEnum kind, TopAbs_ShapeEnum outside) {
            for (TopExp_Explorer it(part, kind, outside); it.More(); it.Next())
                if (IsBounded(it.Current()))
                    bodies.push_back(it.Current());
        };
        add_each(TopAbs_SOLID, TopAbs_SHAPE);
        add_each(TopAbs_SHELL, TopAbs_SOLID);
        std::vector<std::pair<std::optional<BrepColor>, TopoDS_Compound>> loose;
        const auto add_loose = [&](const TopoDS_Shape& shape, const std::optional<BrepColor>& color) {
            if (!IsBounded(shape))
                return;
            auto known = std::find_if(loose.begin(), loose.end(),
                                      [&](const auto& entry) { return entry.first == color; });
            if (known == loose.end()) {
                known = loose.insert(loose.end(), {color, TopoDS_Compound()});
                BRep_Builder().MakeCompound(known->second);
            }
            BRep_Builder().Add(known->second, shape);
        };
        for (const auto& [kind, outside] :
             {std::pair{TopAbs_FACE, TopAbs_SHELL}, std::pair{TopAbs_EDGE, TopAbs_FACE}}) {
            for (TopExp_Explorer it(part, kind, outside); it.More(); it.Next()) {
                const BrepColor* color = labels.colors.Seek(it.Current());
                add_loose(it.Current(), color != nullptr ? std::optional(*color) : std::nullopt);
            }
            for (const auto& [color, compound] : loose)
                bodies.push_back(compound);
            loose.clear();
        }
        return bodies;
    }

    static bool IsBounded(const TopoDS_Shape& shape)
    {
        Bnd_Box box;
        BRepBndLib::Add(shape, box);
        return !box.IsVoid() && !box.IsOpen();
    }

    Handle(XCAFDoc_ShapeTool) shapes_;
    Handle(XCAFDoc_ColorTool) colors_;
    std::map<std::string, std::size_t> groups_;
    bool is_in_group_ = false;
    BrepContent content_;
};

} // namespace

BrepContent ReadBrepContent(const std::string& path, BrepKind kind, const Message_ProgressRange& progress)
{
    Document document;
    switch (kind) {
    case BrepKind::Step:
        ReadStep(path, document.Get(), progress);
        break;
    case BrepKind::Iges:
        ReadIges(path, document.Get(), progress);
        break;
    case BrepKind::Brep:
        ReadShape(path, document.Get(), progress);
        break;
    }
    return AssemblyWalk(document.Get()).Walk();
}

} // namespace viewer
