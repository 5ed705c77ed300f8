// Any model file, whatever its kind, parsed in this process.
#pragma once

#include "viewer/import/import_options.h"
#include "viewer/import/progress.h"
#include "viewer/scene/model.h"

#include <string>

namespace viewer
{

/// Reads a file by what its ending says, in letters of either case: STEP (.step .stp), IGES (.iges .igs) and
/// BREP (.brep .brp) through `ImportBrep`, DXF (.dxf) through `ImportDxf`, all others through `ImportMesh`.
///
/// Throws FileError as those do, and where the model is empty or too large for its size to be a number. What
/// else the libraries throw passes through.
[[nodiscard]] Model ReadModelFile(const std::string& path, const ImportOptions& options,
                                  const ProgressFunction& progress = {});

} // namespace viewer
