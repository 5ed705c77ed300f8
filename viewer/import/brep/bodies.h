// The bodies in a B-rep file, one for each place where an assembly puts them, with placement, name and
// colours. Nothing is faceted here.
#pragma once

#include "viewer/import/brep/brep_body.h"
#include "viewer/import/brep/file_kind.h"
#include "viewer/import/brep/part_counts.h"
#include "viewer/import/import_options.h"

#include <Message_ProgressRange.hxx>

#include <string>
#include <vector>

namespace viewer
{

struct BrepContent {
    std::vector<BrepBody> bodies;
    std::vector<std::string> group_names; ///< of products; fewer than two if the file has no groups
    LeftOutCounts left_out;
};

/// Reads a file. Lengths of STEP and IGES files are millimetres; BREP files have no unit. Faces of an IGES
/// file that meet are sewn to shells. Hidden parts, unbounded bodies and empty parts are counted as left out.
/// Throws FileError, and passes the library's exceptions on.
[[nodiscard]] BrepContent ReadBrepContent(const std::string& path, BrepKind kind,
                                          const ImportOptions& options,
                                          const Message_ProgressRange& progress);

} // namespace viewer
