// Shared by tests of B-rep files: files written by the library's writers, and measures of models and shapes.
#pragma once

#include "tests/viewer/test_support.h"
#include "viewer/import/brep/brep_import.h"
#include "viewer/scene/model.h"

#include <TDF_Label.hxx>
#include <TDocStd_Document.hxx>
#include <TopLoc_Location.hxx>
#include <TopoDS_Shape.hxx>
#include <gp_Vec.hxx>

#include <cstddef>
#include <string>
#include <vector>

namespace viewer
{

/// An empty document of the library, for names, colours and assemblies.
class BrepTestDocument
{
  public:
    BrepTestDocument();
    BrepTestDocument(const BrepTestDocument&) = delete;
    BrepTestDocument& operator=(const BrepTestDocument&) = delete;
    ~BrepTestDocument();

    TDF_Label AddPart(const TopoDS_Shape& shape, const std::string& name);
    TDF_Label AddAssembly(const std::string& name);
    /// Puts a part or an assembly into an assembly. The instance gets a name if one is given.
    TDF_Label Place(const TDF_Label& assembly, const TDF_Label& part, const TopLoc_Location& location,
                    const std::string& name = {});
    void SetColor(const TDF_Label& label, double red, double green, double blue, float alpha = 1.0F);
    /// Sets the colour of a face or a solid of the part.
    void SetColorOf(const TDF_Label& part, const TopoDS_Shape& shape, double red, double green, double blue);
    /// Sets the colour of one use of a part, given by the components that lead to it from the root.
    void SetColorOfUse(const std::vector<TDF_Label>& components, double red, double green, double blue);
    void SetNameOf(const TDF_Label& part, const TopoDS_Shape& shape, const std::string& name);
    void Hide(const TDF_Label& label);

    Handle(TDocStd_Document) & Get() { return document_; }

  private:
    Handle(TDocStd_Document) document_;
};

/// A test with files of shapes.
class BrepTest : public ViewerTest
{
  protected:
    [[nodiscard]] std::string WriteBrep(const TopoDS_Shape& shape,
                                        const std::string& name = "shape.brep") const;
    [[nodiscard]] std::string WriteStep(BrepTestDocument& document,
                                        const std::string& name = "shape.step") const;
    [[nodiscard]] std::string WriteStep(const TopoDS_Shape& shape,
                                        const std::string& name = "shape.step") const;
    [[nodiscard]] std::string WriteIges(BrepTestDocument& document) const;
    /// Writes trimmed surfaces, or solids.
    [[nodiscard]] std::string WriteIges(const TopoDS_Shape& shape, bool as_solids) const;
    /// The error's text when the file is read.
    [[nodiscard]] static std::string ErrorOf(const std::string& path);
};

[[nodiscard]] TopLoc_Location MovedBy(double x, double y, double z);

/// Computed from the facets.
[[nodiscard]] double VolumeOf(const Piece& piece);
[[nodiscard]] double AreaOf(const Piece& piece);
[[nodiscard]] Box BoxOfFaces(const Piece& piece);
/// Computed by the library from the exact surfaces.
[[nodiscard]] double ExactVolumeOf(const TopoDS_Shape& shape);
[[nodiscard]] double ExactAreaOf(const TopoDS_Shape& shape);

/// The number of the shape's edges, without edges of length 0 and edges that a face has twice.
[[nodiscard]] std::size_t OwnEdgesOf(const TopoDS_Shape& shape);
/// The number of edges that the piece's segments form. Edges end at the shape's vertices.
[[nodiscard]] std::size_t EdgesOf(const Piece& piece, const TopoDS_Shape& shape);
/// Whether each segment of the edges is a side of a face, with exactly equal ends.
[[nodiscard]] bool EdgesRunAlongFaces(const Piece& piece);
/// Whether all faces are convex, so that they can be drawn as fans.
[[nodiscard]] bool FacesAreConvex(const Piece& piece);
[[nodiscard]] bool ClosesToABody(const Piece& piece);
/// The number of edges that the body of the piece shows; 0 if it is not closed.
[[nodiscard]] std::size_t ShownEdgesOf(const Piece& piece);

} // namespace viewer
