// Drawings in DXF text files, parsed by the dxflib library, into the host's own model: lines and cut curves,
// faces, layers and blocks. Units stay those of the drawing, whose length the
// model knows where the drawing says it; z is up.
#pragma once

#include "viewer/import/import_options.h"
#include "viewer/import/progress.h"
#include "viewer/scene/model.h"

#include <string>

namespace viewer
{

/// Reads what a drawing shows in model space. Layers become categories, in the order of the layer table,
/// then of first use. What is on one layer, in one colour and comes out of the same blocks is one piece,
/// named after its layer, with the blocks' names as its parents; a mesh is a piece of its own. Edges are
/// those of the file that are not marked as hidden. What is on a layer that is off or frozen, invisible or
/// in paper space is left out, and so are points, texts, dimensions, hatches and all other kinds of entities.
/// The title is the file's name without folders.
///
/// Throws FileError, with the line where known, where the file cannot be read, is binary, no DXF file,
/// truncated or damaged, inserts a block into itself or blows up beyond what `DxfPlacedEntities` and `DxfPieceBuilder`
/// allow, or where it shows nothing.
[[nodiscard]] Model ImportDxf(const std::string& path, const ImportOptions& options,
                              const ProgressFunction& progress = {});

} // namespace viewer
