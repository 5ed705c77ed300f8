#include "viewer/import/brep/bodies.h"

#include "platform/host/cm/color.h"
#include "viewer/import/brep/brep_document.h"
#include "viewer/import/brep/sewing.h"
#include "viewer/text/text.h"

#include <BRepBndLib.hxx>
#include <BRep_Builder.hxx>
#include <Bnd_Box.hxx>
#include <Quantity_ColorRGBA.hxx>
#include <TDF_LabelSequence.hxx>
#include <TDF_Tool.hxx>
#include <TDataStd_Name.hxx>
#include <TDocStd_Document.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS_Compound.hxx>
#include <TopoDS_Iterator.hxx>
#include <XCAFDoc_ColorTool.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_GraphNode.hxx>
#include <XCAFDoc_LayerTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <map>
#include <set>
#include <tuple>
#include <utility>

namespace viewer
{

namespace
{

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

/// Finds the bodies of one part.
class PartBodies
{
  public:
    struct Style {
        std::optional<BrepColor> color; ///< of faces
        std::optional<BrepColor> curve_color;
        bool is_hidden = false;
    };

    struct Found {
        TopoDS_Shape shape;
        std::string name; ///< its own, or that of a shape in the part that holds it
        std::optional<BrepColor> color;
    };

    /// If `ignores_colors`, the colours of shapes in the part are not used.
    PartBodies(bool ignores_colors, const ShapeNames& names, LeftOutCounts& left_out)
        : ignores_colors_(ignores_colors), names_(names), left_out_(left_out)
    {
    }

    void SetStyle(const TopoDS_Shape& shape, const Style& style) { styles_.Bind(shape, style); }

    /// The solids first, then the shells, the loose faces, edges and points. Loose shapes of one colour and
    /// name are one body.
    std::vector<Found> Find(const TopoDS_Shape& part, const std::optional<BrepColor>& color)
    {
        if (!part.IsNull())
            Visit(part, {}, color, color);
        std::vector<Found> found;
        for (std::vector<Found>& kind : found_)
            std::move(kind.begin(), kind.end(), std::back_inserter(found));
        return found;
    }

    [[nodiscard]] const std::shared_ptr<BrepLabels>& Labels() const { return labels_; }
    [[nodiscard]] bool HasLeftOut() const { return has_left_out_; }

  private:
    using OptionalColor = std::optional<BrepColor>;

    void LeaveOut(const char* kind)
    {
        ++left_out_[kind];
        has_left_out_ = true;
    }

    /// `color` and `curve_color` are those of the shape that holds this one.
    void Visit(const TopoDS_Shape& shape, std::string name, OptionalColor color, OptionalColor curve_color)
    {
        if (const Style* style = styles_.Seek(shape)) {
            if (style->is_hidden)
                return LeaveOut(HiddenKindOf(shape));
            if (style->color && !ignores_colors_)
                color = style->color;
            if (style->curve_color && !ignores_colors_)
                curve_color = style->curve_color;
        }
        if (const std::string* own = names_.Seek(shape.Located(TopLoc_Location())))
            name = *own;
        switch (shape.ShapeType()) {
        case TopAbs_SOLID:
        case TopAbs_SHELL:
            return AddBody(shape, name, color);
        case TopAbs_FACE:
            return AddLoose(kFaces, shape, "unbounded face", name, color);
        case TopAbs_EDGE:
            return AddLoose(kEdges, shape, "unbounded curve", name, curve_color);
        case TopAbs_VERTEX:
            return AddLoose(kPoints, shape, "unbounded point", name, curve_color);
        default:
            for (TopoDS_Iterator it(shape); it.More(); it.Next())
                Visit(it.Value(), name, color, curve_color);
        }
    }

    static const char* HiddenKindOf(const TopoDS_Shape& shape)
    {
        switch (shape.ShapeType()) {
        case TopAbs_FACE:
            return "hidden face";
        case TopAbs_WIRE:
        case TopAbs_EDGE:
            return "hidden curve";
        case TopAbs_VERTEX:
            return "hidden point";
        default:
            return "hidden body";
        }
    }

    void AddBody(const TopoDS_Shape& shape, const std::string& name, const OptionalColor& color)
    {
        if (!TopExp_Explorer(shape, TopAbs_FACE).More())
            return LeaveOut("empty body");
        if (!IsBounded(shape))
            return LeaveOut("unbounded body");
        for (TopoDS_Iterator it(shape); it.More(); it.Next())
            StyleFaces(it.Value(), {});
        found_.at(shape.ShapeType() == TopAbs_SOLID ? kSolids : kShells).push_back({shape, name, color});
    }

    /// Sets the colours of the faces in a body: their own, or that of the shell.
    void StyleFaces(const TopoDS_Shape& shape, OptionalColor color)
    {
        if (const Style* style = styles_.Seek(shape)) {
            if (style->is_hidden)
                for (TopExp_Explorer it(shape, TopAbs_FACE); it.More(); it.Next())
                    if (labels_->hidden.Add(it.Current()))
                        LeaveOut("hidden face");
            if (style->color)
                color = style->color;
        }
        if (shape.ShapeType() == TopAbs_SHELL)
            for (TopoDS_Iterator it(shape); it.More(); it.Next())
                StyleFaces(it.Value(), color);
        else if (shape.ShapeType() == TopAbs_FACE && color)
            labels_->colors.Bind(shape, *color);
    }

    void AddLoose(std::size_t kind, const TopoDS_Shape& shape, const char* unbounded, const std::string& name,
                  const OptionalColor& color)
    {
        if (!IsBounded(shape))
            return LeaveOut(unbounded);
        std::vector<Found>& known = found_.at(kind);
        auto same = std::find_if(known.begin(), known.end(), [&](const Found& found) {
            return found.color == color && found.name == name;
        });
        if (same == known.end()) {
            TopoDS_Compound compound;
            BRep_Builder().MakeCompound(compound);
            same = known.insert(known.end(), {compound, name, color});
        }
        BRep_Builder().Add(same->shape, shape);
    }

    static bool IsBounded(const TopoDS_Shape& shape)
    {
        Bnd_Box box;
        BRepBndLib::Add(shape, box);
        return !box.IsVoid() && !box.IsOpen();
    }

    static constexpr std::size_t kSolids = 0;
    static constexpr std::size_t kShells = 1;
    static constexpr std::size_t kFaces = 2;
    static constexpr std::size_t kEdges = 3;
    static constexpr std::size_t kPoints = 4;

    bool ignores_colors_;
    const ShapeNames& names_;
    LeftOutCounts& left_out_;
    bool has_left_out_ = false;
    NCollection_DataMap<TopoDS_Shape, Style, TopTools_ShapeMapHasher> styles_;
    std::shared_ptr<BrepLabels> labels_ = std::make_shared<BrepLabels>();
    std::array<std::vector<Found>, 5> found_;
};

/// Visits the parts of all assemblies.
class AssemblyWalk
{
  public:
    AssemblyWalk(const BrepDocument& document, std::vector<Tessellation> tessellations)
        : document_(document), shapes_(XCAFDoc_DocumentTool::ShapeTool(document.Get()->Main())),
          colors_(XCAFDoc_DocumentTool::ColorTool(document.Get()->Main())),
          layers_(XCAFDoc_DocumentTool::LayerTool(document.Get()->Main()))
    {
        for (Tessellation& tessellation : tessellations)
            tessellations_.push_back(std::make_shared<const Tessellation>(std::move(tessellation)));
    }

    BrepContent Walk()
    {
        TDF_LabelSequence roots;
        shapes_->GetFreeShapes(roots);
        FindGroups(roots);
        for (const TDF_Label& root : roots)
            Visit(root, {}, 0);
        AddOtherTessellations();
        AddAnnotations(document_.Annotations());
        return std::move(content_);
    }

  private:
    static constexpr const char* kAnnotations = "annotations";

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
        // Each entity of an IGES file is a product at the root, down to single curves.
        const bool has_lone_shapes = std::any_of(level.begin(), level.end(), [](const TDF_Label& label) {
            return !XCAFDoc_ShapeTool::IsAssembly(ProductOf(label));
        });
        if (level.Size() < 2 || (document_.SewingTolerance() && has_lone_shapes))
            return;
        for (const TDF_Label& label : level) {
            const TDF_Label product = ProductOf(label);
            if (!groups_.emplace(KeyOf(product), content_.group_names.size()).second)
                continue;
            content_.group_names.push_back(NameOf(product));
        }
    }

    /// The colour of faces. A colour of curves applies to them if there is no other one.
    std::optional<BrepColor> ColorOf(const TDF_Label& label) const
    {
        return FirstColorOf(label, {XCAFDoc_ColorSurf, XCAFDoc_ColorGen, XCAFDoc_ColorCurv});
    }

    std::optional<BrepColor> FirstColorOf(const TDF_Label& label,
                                          const std::array<XCAFDoc_ColorType, 3>& types) const
    {
        Quantity_ColorRGBA color;
        for (const XCAFDoc_ColorType type : types)
            if (colors_->GetColor(label, type, color))
                return ColorFrom(color);
        return std::nullopt;
    }

    /// Whether the shape is hidden itself, or all layers that it lies on are.
    bool IsHidden(const TDF_Label& label) const
    {
        if (!colors_->IsVisible(label))
            return true;
        TDF_LabelSequence layers;
        if (!layers_->GetLayers(label, layers) || layers.IsEmpty())
            return false;
        return std::none_of(layers.begin(), layers.end(),
                            [&](const TDF_Label& layer) { return layers_->IsVisible(layer); });
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
        if (IsHidden(label)) {
            ++content_.left_out["hidden part"];
            return;
        }
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
        PartBodies inside(inherited.overrides_colors, document_.Names(), content_.left_out);
        TDF_LabelSequence inner;
        XCAFDoc_ShapeTool::GetSubShapes(label, inner);
        for (const TDF_Label& sub_label : inner) {
            PartBodies::Style style;
            style.color = ColorOf(sub_label);
            style.curve_color =
                FirstColorOf(sub_label, {XCAFDoc_ColorCurv, XCAFDoc_ColorGen, XCAFDoc_ColorSurf});
            style.is_hidden = IsHidden(sub_label);
            inside.SetStyle(XCAFDoc_ShapeTool::GetShape(sub_label), style);
        }
        const std::size_t before = content_.bodies.size();
        for (const PartBodies::Found& found : inside.Find(part, inherited.color)) {
            BrepBody body{found.shape, inherited.placement,        inherited.name,  inherited.parents,
                          found.color, inherited.overrides_colors, inside.Labels(), group,
                          nullptr};
            if (!found.name.empty() && found.name != body.name && !found.shape.IsSame(part))
                body.parents.push_back(std::exchange(body.name, found.name));
            content_.bodies.push_back(std::move(body));
        }
        AddTessellations(NameOf(label), inherited, group);
        // A missing file is counted as such.
        if (content_.bodies.size() == before && !inside.HasLeftOut() &&
            !XCAFDoc_ShapeTool::IsExternRef(label))
            ++content_.left_out[kEmptyPart];
    }

    void AddTessellations(const std::string& product, const Inherited& inherited, std::size_t group)
    {
        for (const auto& tessellation : tessellations_) {
            if (tessellation->is_annotation || tessellation->product.empty() ||
                tessellation->product != product)
                continue;
            placed_.insert(tessellation.get());
            AddTessellation(tessellation, inherited, group);
        }
    }

    void AddTessellation(const std::shared_ptr<const Tessellation>& tessellation, const Inherited& inherited,
                         std::size_t group)
    {
        BrepBody body;
        body.placement = inherited.placement;
        body.name = inherited.name;
        body.parents = inherited.parents;
        body.color = inherited.color;
        body.overrides_colors = inherited.overrides_colors;
        if (const auto& color = tessellation->color; color && !body.overrides_colors) {
            const auto& [red, green, blue] = *color;
            body.color = BrepColor{NearestColorIndex(red, green, blue), 1.0F};
        }
        if (!tessellation->name.empty() && tessellation->name != body.name)
            body.parents.push_back(std::exchange(body.name, tessellation->name));
        std::erase(body.parents, std::string());
        body.labels = std::make_shared<BrepLabels>();
        body.group = group;
        body.tessellation = tessellation;
        content_.bodies.push_back(std::move(body));
    }

    /// Those of products that the library gives no part for.
    void AddOtherTessellations()
    {
        for (const auto& tessellation : tessellations_) {
            if (placed_.contains(tessellation.get()))
                continue;
            Inherited inherited;
            inherited.name = tessellation->is_annotation ? kAnnotations : tessellation->product;
            AddTessellation(tessellation, inherited, GroupOf(inherited.name));
        }
    }

    void AddAnnotations(const TopoDS_Shape& shape)
    {
        if (shape.IsNull())
            return;
        BrepBody body;
        body.shape = shape;
        body.name = kAnnotations;
        body.labels = std::make_shared<BrepLabels>();
        body.group = GroupOf(body.name);
        content_.bodies.push_back(std::move(body));
    }

    /// The group of a body outside of the assembly; a new one if the file has groups.
    std::size_t GroupOf(const std::string& name)
    {
        std::vector<std::string>& names = content_.group_names;
        if (names.size() < 2)
            return 0;
        const auto known = std::find(names.begin(), names.end(), name);
        if (known != names.end())
            return static_cast<std::size_t>(known - names.begin());
        names.push_back(name);
        return names.size() - 1;
    }

    const BrepDocument& document_;
    Handle(XCAFDoc_ShapeTool) shapes_;
    Handle(XCAFDoc_ColorTool) colors_;
    Handle(XCAFDoc_LayerTool) layers_;
    std::vector<std::shared_ptr<const Tessellation>> tessellations_;
    std::set<const Tessellation*> placed_;
    std::map<std::string, std::size_t> groups_;
    bool is_in_group_ = false;
    BrepContent content_;
};

/// Joins curves and points at the root of an IGES file to one body for each name and colour.
void JoinLooseCurves(std::vector<BrepBody>& bodies)
{
    using Key = std::tuple<std::string, int, float>;
    std::map<Key, BrepBody> joined;
    const auto is_joined = [&](const BrepBody& body) {
        if (!body.parents.empty() || body.placement.Form() != gp_Identity || body.tessellation ||
            TopExp_Explorer(body.shape, TopAbs_FACE).More())
            return false;
        const Key key{body.name, body.color ? body.color->index : -1, body.color ? body.color->alpha : 1.0F};
        const auto [known, is_new] = joined.emplace(key, body);
        if (is_new) {
            TopoDS_Compound compound;
            BRep_Builder().MakeCompound(compound);
            known->second.shape = compound;
        }
        BRep_Builder().Add(known->second.shape, body.shape);
        return true;
    };
    std::erase_if(bodies, is_joined);
    for (auto& [key, body] : joined)
        bodies.push_back(std::move(body));
}

/// The part of a file that was not read is empty. It is counted once, as the file.
void ForgetPartsOfFiles(LeftOutCounts& left_out)
{
    const auto empty = left_out.find(kEmptyPart);
    if (empty == left_out.end())
        return;
    std::size_t files = 0;
    for (const auto& [kind, count] : left_out)
        if (kind.starts_with("missing file ") || kind.starts_with("file "))
            files += count;
    if (files >= empty->second)
        left_out.erase(empty);
    else
        empty->second -= files;
}

} // namespace

BrepContent ReadBrepContent(const std::string& path, BrepKind kind, const ImportOptions& options,
                            const Message_ProgressRange& progress)
{
    BrepDocument document;
    document.Read(path, kind, options, progress);
    LeftOutCounts left_out = document.LeftOut();
    std::vector<Tessellation> tessellations;
    if (kind == BrepKind::Step)
        tessellations = ReadTessellations(path, left_out);
    BrepContent content = AssemblyWalk(document, std::move(tessellations)).Walk();
    for (const auto& [left_out_kind, count] : left_out)
        content.left_out[left_out_kind] += count;
    ForgetPartsOfFiles(content.left_out);
    if (const std::optional<double> tolerance = document.SewingTolerance()) {
        SewLooseFaces(content.bodies, *tolerance);
        JoinLooseCurves(content.bodies);
    }
    return content;
}

} // namespace viewer
