// A drawing as its file states it: layers, entities, and blocks of entities, which can be nested. Curves are
// kept as curves, in the coordinates of their block. Nothing is placed, cut into segments or hidden here.
#pragma once

#include "viewer/import/dxf/curve_segments.h"
#include "viewer/import/dxf/dxf_face.h"
#include "viewer/import/dxf/glyph.h"
#include "viewer/import/dxf/hatch.h"
#include "viewer/import/dxf/infinite_line.h"
#include "viewer/import/dxf/point_mark.h"
#include "viewer/import/dxf/spline_segments.h"
#include "viewer/import/dxf/thick_curve.h"
#include "viewer/scene/affine.h"
#include "viewer/scene/model.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

namespace viewer
{

/// Colour numbers of entities without a colour of their own. Other numbers are palette indices.
inline constexpr int kColorByBlock = 0;
inline constexpr int kColorByLayer = 256;

/// The opacity of an entity.
struct DxfOpacity {
    enum class Source { Layer, Block, Own };
    Source source = Source::Layer;
    float value = 1.0F; ///< 0 to 1; only for `Own`
};

/// The opacity that group 440 of an entity states; 0 for none.
[[nodiscard]] DxfOpacity OpacityOf(double stated);

/// The nearest palette index to a colour 0xRRGGBB.
[[nodiscard]] int NearestIndexOf(int color24);

/// The palette index of an entity's 24-bit colour, negative for none, beside its palette index. No value if
/// it has none, or if it is only another way to state the foreground.
[[nodiscard]] std::optional<int> TrueColorOf(int color, int color24);

struct DxfLayer {
    std::string name;
    unsigned char color = 7;
    float opacity = 1.0F;
    bool is_off = false;
    bool is_frozen = false;
};

/// A reference that inserts a block once, or in columns and rows.
struct DxfInsert {
    std::size_t block = 0;
    Affine placement; ///< of the first column and row; it maps the block with its base point at the origin
    int columns = 1;
    int rows = 1;
    Point column_step; ///< from one column to the next, in the coordinates around the insert
    Point row_step;
    /// The block belongs to this reference only, for example to a dimension. Its name is not shown to users.
    bool is_anonymous = false;
};

/// Characters in one plane, and the straight lines between them.
struct DxfText {
    /// Places the outline by `x + width * (x' + slant * y')` and `y + height * y'`.
    struct Character {
        std::shared_ptr<const Glyph> glyph;
        double x = 0.0;
        double y = 0.0;
        double width = 1.0;
        double height = 1.0;
        double slant = 0.0; ///< in units of `width`
    };

    Affine frame; ///< maps the plane of the text to the drawing
    std::vector<Character> characters;
    std::vector<Segment> lines;
    Box box;                       ///< of all outlines and lines, in the plane
    std::size_t segment_count = 0; ///< of all outlines and lines
};

/// Entities of a kind that is not drawn.
struct DxfLeftOut {
    std::string kind;
    std::size_t count = 1;
};

struct DxfEntity {
    std::variant<Segment, EllipticArc, Spline, DxfFace, DxfMesh, DxfInsert, DxfPoint, DxfInfiniteLine,
                 DxfHatch, DxfWall, DxfBand, DxfText, DxfLeftOut>
        shape;
    std::size_t layer = 0;
    int color = kColorByLayer;
    std::size_t line = 0; ///< the line of the file where it begins
    DxfOpacity opacity{};
};

struct DxfBlock {
    std::string name;
    bool is_defined = false;  ///< false if the file only refers to it
    bool is_external = false; ///< its entities are in another file
    Point base;
    std::vector<DxfEntity> entities;
};

/// Numbers names in the order of their first use. Names in drawings are case-insensitive.
class DxfNameNumbers
{
  public:
    /// Returns the name's number, and whether the name is new.
    std::pair<std::size_t, bool> Number(std::string_view name);

  private:
    std::unordered_map<std::string, std::size_t> numbers_;
};

class DxfDrawing
{
  public:
    std::vector<DxfLayer> layers;
    std::vector<DxfBlock> blocks;
    std::vector<DxfEntity> entities; ///< those outside of blocks
    DxfPointStyle point_style;

    /// The index of the layer or block with this name. It is added if there is none.
    std::size_t LayerNumber(std::string_view name);
    std::size_t BlockNumber(std::string_view name);

  private:
    DxfNameNumbers layer_names_;
    DxfNameNumbers block_names_;
};

} // namespace viewer
