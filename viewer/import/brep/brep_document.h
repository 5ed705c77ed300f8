// A STEP, IGES or BREP file, read into a document of the library.
#pragma once

#include "viewer/import/brep/file_kind.h"
#include "viewer/import/brep/part_counts.h"
#include "viewer/import/import_options.h"

#include <Message_ProgressRange.hxx>
#include <NCollection_DataMap.hxx>
#include <TDocStd_Document.hxx>
#include <TopTools_ShapeMapHasher.hxx>
#include <TopoDS_Compound.hxx>

#include <optional>
#include <string>

class XCAFApp_Application;

namespace viewer
{

/// Names of shapes inside parts. The keys have no location.
using ShapeNames = NCollection_DataMap<TopoDS_Shape, std::string, TopTools_ShapeMapHasher>;

/// A document of the library, and the contents of a file that a document cannot contain. The library keeps the
/// document until this object is destroyed.
class BrepDocument
{
  public:
    BrepDocument();
    BrepDocument(const BrepDocument&) = delete;
    BrepDocument& operator=(const BrepDocument&) = delete;
    ~BrepDocument();

    /// Reads a file. Lengths of STEP and IGES files are converted to millimetres. STEP files that it refers
    /// to are read too, as `CheckExternalFiles` allows. Throws FileError if the file cannot be parsed, and
    /// passes the library's exceptions on.
    void Read(const std::string& path, BrepKind kind, const ImportOptions& options,
              const Message_ProgressRange& progress);

    [[nodiscard]] const Handle(TDocStd_Document) & Get() const { return document_; }
    [[nodiscard]] const ShapeNames& Names() const { return names_; }
    [[nodiscard]] const LeftOutCounts& LeftOut() const { return left_out_; }
    /// Curves of annotations, in the coordinates of the whole model; null if there are none.
    [[nodiscard]] const TopoDS_Shape& Annotations() const { return annotations_; }
    /// The distance at which the faces of an IGES file meet; absent for other kinds of files, whose faces are
    /// connected.
    [[nodiscard]] const std::optional<double>& SewingTolerance() const { return sewing_tolerance_; }

  private:
    void ReadStep(const std::string& path, const ImportOptions& options,
                  const Message_ProgressRange& progress);
    void ReadIges(const std::string& path, const Message_ProgressRange& progress);
    void ReadShape(const std::string& path, const Message_ProgressRange& progress);

    Handle(XCAFApp_Application) application_;
    Handle(TDocStd_Document) document_;
    ShapeNames names_;
    LeftOutCounts left_out_;
    TopoDS_Shape annotations_;
    std::optional<double> sewing_tolerance_;
};

} // namespace viewer
