// Reads DXF text files by the dxflib library: lines, curves as segments, and faces, with layers and blocks.
// Coordinates stay in the drawing's unit, z is up. The model states the unit if the drawing does.
#pragma once

#include "viewer/import/import_options.h"
#include "viewer/import/progress.h"
#include "viewer/scene/model.h"

#include <string>

namespace viewer
{

/// Reads the model space of a drawing.
///
/// Categories: the layers, in the order of the layer table, then of first use. Pieces: all entities with the
/// same layer, colour and path of blocks become one piece; a mesh is a piece of its own. A piece has the name
/// of its layer; its parents are the names of the blocks. Edges are those that the file does not mark as
/// hidden.
///
/// Dropped: entities on layers that are off or frozen, invisible entities, paper space, points, texts,
/// dimensions, hatches, and all other kinds of entities.
///
/// The title is the file's name without folders.
///
/// Throws FileError, with the line if known, if the file cannot be read, is binary, is no DXF file, is
/// truncated or damaged, inserts a block into itself, exceeds the limits of `DxfPlacedEntities` or
/// `DxfPieceBuilder`, or shows nothing.
[[nodiscard]] Model ImportDxf(const std::string& path, const ImportOptions& options,
                              const ProgressFunction& progress = {});

} // namespace viewer
