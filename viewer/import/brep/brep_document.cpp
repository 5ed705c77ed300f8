#include "viewer/import/brep/brep_document.h"

#include "viewer/import/brep/external_files.h"
#include "viewer/text/file_error.h"
#include "viewer/text/text.h"

#include <BRepBuilderAPI_MakeEdge.hxx>
#include <BRepTools.hxx>
#include <BRep_Builder.hxx>
#include <BinTools.hxx>
#include <IGESCAFControl_Reader.hxx>
#include <IGESControl_Controller.hxx>
#include <IGESData_GlobalSection.hxx>
#include <IGESData_IGESEntity.hxx>
#include <IGESData_IGESModel.hxx>
#include <Interface_Protocol.hxx>
#include <Interface_ShareFlags.hxx>
#include <Interface_Static.hxx>
#include <STEPCAFControl_Controller.hxx>
#include <STEPCAFControl_ExternFile.hxx>
#include <STEPCAFControl_Reader.hxx>
#include <Standard_Failure.hxx>
#include <StepDimTol_GeometricTolerance.hxx>
#include <StepRepr_RepresentationItem.hxx>
#include <StepShape_DimensionalLocation.hxx>
#include <StepShape_DimensionalSize.hxx>
#include <StepShape_FaceSurface.hxx>
#include <StepShape_GeometricSet.hxx>
#include <StepShape_ShellBasedSurfaceModel.hxx>
#include <StepShape_SolidModel.hxx>
#include <StepVisual_AnnotationOccurrence.hxx>
#include <StepVisual_AnnotationPlane.hxx>
#include <TransferBRep.hxx>
#include <Transfer_ActorOfTransientProcess.hxx>
#include <Transfer_Binder.hxx>
#include <Transfer_TransientProcess.hxx>
#include <XCAFApp_Application.hxx>
#include <XCAFDoc_DocumentTool.hxx>
#include <XCAFDoc_ShapeTool.hxx>
#include <XSControl_TransferReader.hxx>
#include <XSControl_WorkSession.hxx>

#include <algorithm>
#include <array>
#include <filesystem>
#include <system_error>
#include <utility>

namespace viewer
{

namespace
{

TopoDS_Shape ShapeFrom(const Handle(Transfer_TransientProcess) & process,
                       const Handle(Standard_Transient) & entity)
{
    const Handle(Transfer_Binder) binder = process->Find(entity);
    return binder.IsNull() ? TopoDS_Shape() : TransferBRep::ShapeResult(binder);
}

/// Collects the shapes of a STEP model that the library's document cannot contain.
class StepModelWalk
{
  public:
    StepModelWalk(const Handle(XSControl_WorkSession) & session, ShapeNames& names, LeftOutCounts& left_out)
        : process_(session->TransferReader()->TransientProcess()), model_(session->Model()), names_(names),
          left_out_(left_out)
    {
    }

    void Walk()
    {
        if (process_.IsNull() || model_.IsNull())
            return;
        for (int i = 1; i <= model_->NbEntities(); ++i) {
            const Handle(Standard_Transient) entity = model_->Value(i);
            if (entity->IsKind(STANDARD_TYPE(StepShape_SolidModel)) ||
                entity->IsKind(STANDARD_TYPE(StepShape_ShellBasedSurfaceModel)) ||
                entity->IsKind(STANDARD_TYPE(StepShape_GeometricSet)))
                NoteName(Handle(StepRepr_RepresentationItem)::DownCast(entity));
            else if (entity->IsKind(STANDARD_TYPE(StepShape_FaceSurface)))
                CheckFace(entity);
        }
    }

  private:
    /// NOTE: The library can name such shapes (read.stepcaf.subshapes.name), but crashes on some files.
    void NoteName(const Handle(StepRepr_RepresentationItem) & item)
    {
        if (item->Name().IsNull() || item->Name()->IsEmpty())
            return;
        const TopoDS_Shape shape = ShapeFrom(process_, item);
        if (shape.IsNull())
            return;
        const std::string name(Trimmed(OneLine(item->Name()->ToCString())));
        if (!name.empty() && name != "NONE")
            names_.Bind(shape.Located(TopLoc_Location()), name);
    }

    void CheckFace(const Handle(Standard_Transient) & face)
    {
        const Handle(Transfer_Binder) binder = process_->Find(face);
        if (!binder.IsNull() && !binder->HasResult())
            ++left_out_["face that cannot be read"];
    }

    Handle(Transfer_TransientProcess) process_;
    Handle(Interface_InterfaceModel) model_;
    ShapeNames& names_;
    LeftOutCounts& left_out_;
};

/// The curves of annotations. Their texts are only shown if the file contains them as curves.
class AnnotationCurves
{
  public:
    AnnotationCurves(const Handle(XSControl_WorkSession) & session, LeftOutCounts& left_out)
        : reader_(session->TransferReader()), process_(reader_->TransientProcess()), model_(session->Model()),
          left_out_(left_out)
    {
        BRep_Builder().MakeCompound(curves_);
    }

    TopoDS_Shape Read(bool draws)
    {
        std::size_t shown = 0;
        LeftOutCounts rules;
        for (int i = 1; i <= model_->NbEntities(); ++i) {
            const Handle(Standard_Transient) entity = model_->Value(i);
            // The plane of an annotation is not visible.
            if (entity->IsKind(STANDARD_TYPE(StepVisual_AnnotationPlane)))
                continue;
            if (const auto note = Handle(StepVisual_AnnotationOccurrence)::DownCast(entity); !note.IsNull()) {
                const TopoDS_Shape shape = draws ? ShapeOf(note->Item()) : TopoDS_Shape();
                if (shape.IsNull()) {
                    ++left_out_["annotation"];
                    continue;
                }
                BRep_Builder().Add(curves_, shape);
                ++shown;
            } else if (entity->IsKind(STANDARD_TYPE(StepShape_DimensionalSize)) ||
                       entity->IsKind(STANDARD_TYPE(StepShape_DimensionalLocation))) {
                ++rules["dimension"];
            } else if (entity->IsKind(STANDARD_TYPE(StepDimTol_GeometricTolerance))) {
                ++rules["tolerance"];
            }
        }
        if (shown == 0)
            for (const auto& [kind, count] : rules)
                left_out_[kind] += count;
        return shown > 0 ? TopoDS_Shape(curves_) : TopoDS_Shape();
    }

  private:
    TopoDS_Shape ShapeOf(const Handle(StepRepr_RepresentationItem) & item)
    {
        if (item.IsNull() || !item->IsKind(STANDARD_TYPE(StepShape_GeometricSet)))
            return {};
        if (const TopoDS_Shape known = ShapeFrom(process_, item); !known.IsNull())
            return known;
        try {
            const Handle(Transfer_Binder) binder = reader_->Actor()->Transfer(item, process_);
            return binder.IsNull() ? TopoDS_Shape() : TransferBRep::ShapeResult(binder);
        } catch (const Standard_Failure&) {
            return {};
        }
    }

    Handle(XSControl_TransferReader) reader_;
    Handle(Transfer_TransientProcess) process_;
    Handle(Interface_InterfaceModel) model_;
    LeftOutCounts& left_out_;
    TopoDS_Compound curves_;
};

/// Counts the files that the library could not read.
void CountMissingFiles(const STEPCAFControl_Reader& reader, LeftOutCounts& left_out)
{
    for (NCollection_DataMap<TCollection_AsciiString, Handle(STEPCAFControl_ExternFile)>::Iterator it(
             reader.ExternFiles());
         it.More(); it.Next())
        if (it.Value()->GetLoadStatus() != IFSelect_RetDone && it.Key() != "(none)")
            ++left_out["missing file \"" + OneLine(it.Key().ToCString()) + "\""];
}

/// Whether an entity of this type shows something. Types below 100 and from 302 to 499 define and structure,
/// except for instances.
bool IsShown(int type)
{
    constexpr int kFirstGeometry = 100;
    constexpr int kLastAnnotation = 230;
    constexpr int kFirstTopology = 500;
    constexpr int kMatrix = 124;
    constexpr std::array<int, 3> kInstances{408, 412, 414};
    if (type == kMatrix)
        return false;
    return (type >= kFirstGeometry && type <= kLastAnnotation) || type >= kFirstTopology ||
           std::find(kInstances.begin(), kInstances.end(), type) != kInstances.end();
}

/// Counts the entities of an IGES file that stand alone and gave no shape.
void CountUnreadEntities(const Handle(XSControl_WorkSession) & session, LeftOutCounts& left_out)
{
    const auto model = Handle(IGESData_IGESModel)::DownCast(session->Model());
    const Handle(Transfer_TransientProcess) process = session->TransferReader()->TransientProcess();
    const Interface_ShareFlags shares(model, session->Protocol());
    for (int i = 1; i <= model->NbEntities(); ++i) {
        const Handle(IGESData_IGESEntity) entity = model->Entity(i);
        if (!IsShown(entity->TypeNumber()) || shares.IsShared(entity))
            continue;
        if (entity->BlankStatus() != 0)
            ++left_out["hidden entity"];
        else if (process.IsNull() || ShapeFrom(process, entity).IsNull())
            ++left_out["entity of type " + std::to_string(entity->TypeNumber())];
    }
}

} // namespace

BrepDocument::BrepDocument() : application_(XCAFApp_Application::GetApplication())
{
    application_->NewDocument("BinXCAF", document_);
}

BrepDocument::~BrepDocument()
{
    application_->Close(document_);
}

void BrepDocument::Read(const std::string& path, BrepKind kind, const ImportOptions& options,
                        const Message_ProgressRange& progress)
{
    switch (kind) {
    case BrepKind::Step:
        return ReadStep(path, options, progress);
    case BrepKind::Iges:
        return ReadIges(path, progress);
    case BrepKind::Brep:
        return ReadShape(path, progress);
    }
}

void BrepDocument::ReadStep(const std::string& path, const ImportOptions& options,
                            const Message_ProgressRange& progress)
{
    STEPCAFControl_Controller::Init();
    Interface_Static::SetCVal("xstep.cascade.unit", "MM");
    Interface_Static::SetIVal("read.stepcaf.subshapes.name", 0);
    STEPCAFControl_Reader reader;
    reader.SetColorMode(Standard_True);
    reader.SetNameMode(Standard_True);
    reader.SetSHUOMode(!options.safe);
    reader.SetLayerMode(!options.safe);
    reader.SetPropsMode(Standard_False);
    reader.SetGDTMode(Standard_False);
    reader.SetMatMode(Standard_False);
    reader.SetViewMode(Standard_False);
    // NOTE: The library finds no files beside one that is given by a relative path.
    std::error_code error;
    const std::filesystem::path whole = std::filesystem::canonical(path, error);
    if (reader.ReadFile(error ? path.c_str() : whole.c_str()) != IFSelect_RetDone)
        throw FileError(path, "damaged: is not a STEP file that can be parsed");
    CheckExternalFiles(path, reader.Reader().WS(), left_out_);
    const bool has_shapes = reader.Transfer(document_, progress);
    const Handle(XSControl_WorkSession) session = reader.Reader().WS();
    StepModelWalk(session, names_, left_out_).Walk();
    CountMissingFiles(reader, left_out_);
    for (NCollection_DataMap<TCollection_AsciiString, Handle(STEPCAFControl_ExternFile)>::Iterator it(
             reader.ExternFiles());
         it.More(); it.Next())
        StepModelWalk(it.Value()->GetWS(), names_, left_out_).Walk();
    if (has_shapes)
        annotations_ = AnnotationCurves(session, left_out_).Read(!options.safe);
}

void BrepDocument::ReadIges(const std::string& path, const Message_ProgressRange& progress)
{
    IGESControl_Controller::Init();
    Interface_Static::SetCVal("xstep.cascade.unit", "MM");
    IGESCAFControl_Reader reader;
    reader.SetColorMode(Standard_True);
    reader.SetNameMode(Standard_True);
    reader.SetLayerMode(Standard_False);
    reader.SetReadVisible(Standard_True);
    if (reader.ReadFile(path.c_str()) != IFSelect_RetDone)
        throw FileError(path, "damaged: is not an IGES file that can be parsed");
    static_cast<void>(reader.Transfer(document_, progress));
    CountUnreadEntities(reader.WS(), left_out_);
    const IGESData_GlobalSection& global = reader.IGESModel()->GlobalSection();
    sewing_tolerance_ = global.Resolution() * global.UnitValue();
}

void BrepDocument::ReadShape(const std::string& path, const Message_ProgressRange& progress)
{
    TopoDS_Shape shape;
    const bool is_read = IsBinaryBrep(path) ? BinTools::Read(shape, path.c_str(), progress)
                                            : BRepTools::Read(shape, path.c_str(), BRep_Builder(), progress);
    if (!is_read)
        throw FileError(path, "damaged: is not a BREP file that can be parsed");
    if (!shape.IsNull())
        XCAFDoc_DocumentTool::ShapeTool(document_->Main())->AddShape(shape, Standard_False);
}

} // namespace viewer
