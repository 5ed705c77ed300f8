// Parses a model file of any kind in the calling process.
#pragma once

#include "viewer/import/import_options.h"
#include "viewer/import/progress.h"
#include "viewer/scene/model.h"

#include <string>

namespace viewer
{

/// Reads a file. Its extension, in either case, selects the importer: STEP (.step .stp), IGES (.iges .igs)
/// and BREP (.brep .brp .bbrep) are read by `ImportBrep`, DXF (.dxf) by `ImportDxf`, all others by
/// `ImportMesh`.
///
/// Faces are convex and of at most `kMaxPartCorners` corners (`FillFaces`), and it is known from which sides
/// they are visible (`SettleSides`).
///
/// Throws FileError as the importers do, and if the model is empty, with what was left out of it, or its
/// diagonal is not finite. Other exceptions of the parsing libraries pass through.
[[nodiscard]] Model ReadModelFile(const std::string& path, const ImportOptions& options,
                                  const ProgressFunction& progress = {});

} // namespace viewer
