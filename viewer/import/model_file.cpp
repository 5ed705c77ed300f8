#include "viewer/import/model_file.h"

#include "viewer/import/brep/brep_import.h"
#include "viewer/import/dxf/dxf_import.h"
#include "viewer/import/mesh/mesh_import.h"
#include "viewer/text/file_error.h"
#include "viewer/text/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

namespace viewer
{

namespace
{

Model Dispatch(const std::string& path, const ImportOptions& options, const ProgressFunction& progress)
{
    constexpr std::array<std::string_view, 6> kBrepEndings = {".step", ".stp",  ".iges",
                                                              ".igs",  ".brep", ".brp"};
    // That importer converts STEP and IGES files to millimetres; BREP files have no unit.
    constexpr double kMillimeter = 0.001;
    const std::string ending = LowerCaseExtension(path);
    if (std::ranges::find(kBrepEndings, ending) != kBrepEndings.end()) {
        Model model = ImportBrep(path, options, progress);
        if (!ending.starts_with(".b"))
            model.meters_per_unit = kMillimeter;
        return model;
    }
    if (ending == ".dxf")
        return ImportDxf(path, options, progress);
    return ImportMesh(path, progress);
}

} // namespace

Model ReadModelFile(const std::string& path, const ImportOptions& options, const ProgressFunction& progress)
{
    Model model = Dispatch(path, options, progress);
    const Box box = model.Extents();
    if (box.IsEmpty())
        throw FileError(path, "holds nothing to show");
    if (!std::isfinite(box.Diagonal()))
        throw FileError(path, "holds coordinates that are too far apart");
    return model;
}

} // namespace viewer
