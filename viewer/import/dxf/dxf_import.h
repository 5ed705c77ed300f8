// Reads DXF files, of text and binary, by the dxflib library: lines, curves as segments, faces, hatches,
// points, and texts as the outlines of their characters, with layers and blocks. Coordinates stay in the
// drawing's unit, z is up. The model states the unit if the drawing does.
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
/// of its layer; its parents are the names of the blocks, without the blocks that belong to a single
/// dimension or table. Edges are those that the file does not mark as hidden.
///
/// Hatches are filled, or covered by the lines of their pattern; one with too many lines is filled. Points
/// are drawn as the marks that the header chooses. Construction lines and rays end at the box of the drawing,
/// with a margin. Widths and thicknesses become faces. Line types are ignored: all lines are continuous. Of a
/// subdivision mesh the cage is drawn, of an image its frame.
///
/// Annotations: texts, attributes of inserts, dimensions, leaders, tolerances and tables are drawn.
/// Characters are outlines of the installed fonts, DejaVu first; a drawing's own fonts are not looked for. A
/// dimension is its block, or is drawn from its points if it has none.
///
/// Dropped: entities on layers that are off or frozen, invisible entities, and paper space. A file may end
/// without its end marker if its entities are complete.
///
/// Left out and counted in the model: entities of other kinds, references to other drawings ("XREF name"),
/// images, hatches without boundary, pattern or area, or with a boundary that crosses itself too often or
/// would take more than a few seconds to fill, damaged meshes and helices, construction lines without
/// direction, annotations with values that are not numbers, tables without their block, and texts beyond half
/// of the limit of segments. Those in a block count once for each place where it is inserted and visible.
///
/// The title is the file's name without folders.
///
/// Throws FileError, with the line if known, if the file cannot be read, is no DXF file, is
/// truncated or damaged, inserts a block into itself, exceeds the limits of `DxfPlacedEntities` or
/// `DxfPieceBuilder`, or shows nothing.
[[nodiscard]] Model ImportDxf(const std::string& path, const ImportOptions& options,
                              const ProgressFunction& progress = {});

} // namespace viewer
