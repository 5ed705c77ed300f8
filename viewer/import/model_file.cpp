#include "viewer/import/model_file.h"

#include "viewer/import/brep/brep_import.h"
#include "viewer/import/brep/file_kind.h"
#include "viewer/import/dxf/dxf_import.h"
#include "viewer/import/mesh/mesh_import.h"
#include "viewer/scene/face_filling.h"
#include "viewer/scene/surface_sides.h"
#include "viewer/text/file_error.h"
#include "viewer/text/text.h"

#include <cmath>

namespace viewer
{

namespace
{

Model Import(const std::string& path, const ImportOptions& options, const ProgressFunction& progress)
{
    if (BrepKindOf(path))
        return ImportBrep(path, options, progress);
    if (LowerCaseExtension(path) == ".dxf")
        return ImportDxf(path, options, progress);
    return ImportMesh(path, progress);
}

} // namespace

Model ReadModelFile(const std::string& path, const ImportOptions& options, const ProgressFunction& progress)
{
    Model model = Import(path, options, progress);
    FillFaces(model);
    SettleSides(model);
    const Box box = model.Extents();
    if (box.IsEmpty())
        throw FileError(path,
                        "holds nothing to show" +
                            (model.left_out.empty() ? std::string() : ", only " + ListOf(model.left_out)));
    if (!std::isfinite(box.Diagonal()))
        throw FileError(path, "holds coordinates that are too far apart");
    return model;
}

} // namespace viewer
