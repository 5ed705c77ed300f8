// A drawing as its file gives it: layers, and entities in blocks that may hold each other. Curves are kept as
// curves, in the coordinates of the block that they stand in; nothing is placed, cut or hidden here.
#pragma once

#include "viewer/import/dxf/curve_segments.h"
#include "viewer/import/dxf/spline_segments.h"
#include "viewer/scene/affine.h"
#include "viewer/scene/model.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

namespace viewer
{

/// Colours of an entity that are not of its own; the others are palette indices.
inline constexpr int kColorByBlock = 0;
inline constexpr int kColorByLayer = 256;

struct DxfLayer {
    std::string name;
    unsigned char color = 7;
    bool is_off = false;
    bool is_frozen = false;
};

/// Three or four corners. The edges run from each corner to the next, and from the last to the first.
struct DxfFace {
    std::array<Point, 4> corners;
    std::size_t count = 4;
    std::array<bool, 4> hidden_edges{};
};

/// Faces that belong together.
using DxfMesh = std::vector<DxfFace>;

/// A block, put somewhere: once, or in columns and rows.
struct DxfInsert {
    std::size_t block = 0;
    Affine placement; ///< of the block's base point as the origin, for the first column and row
    int columns = 1;
    int rows = 1;
    Point column_step; ///< from one column to the next, in the space of `placement`'s result
    Point row_step;
};

struct DxfEntity {
    std::variant<Segment, EllipticArc, Spline, DxfFace, DxfMesh, DxfInsert> shape;
    std::size_t layer = 0;
    int color = kColorByLayer;
    std::size_t line = 0; ///< of the file, where it begins
};

struct DxfBlock {
    std::string name;
    bool is_defined = false; ///< false where it is only referred to
    Point base;
    std::vector<DxfEntity> entities;
};

/// Numbers for names, in the order of their coming; capitals do not count in drawings.
class DxfNameNumbers
{
  public:
    /// The number of the name, and whether it is new.
    std::pair<std::size_t, bool> Number(std::string_view name);

  private:
    std::unordered_map<std::string, std::size_t> numbers_;
};

class DxfDrawing
{
  public:
    std::vector<DxfLayer> layers;
    std::vector<DxfBlock> blocks;
    std::vector<DxfEntity> entities; ///< outside of blocks

    /// The number of the layer with this name, which is made where there is none yet.
    std::size_t LayerNumber(std::string_view name);
    std::size_t BlockNumber(std::string_view name);

  private:
    DxfNameNumbers layer_names_;
    DxfNameNumbers block_names_;
};

} // namespace viewer
