// The visible entities of a drawing with all inserts expanded: their placement, layer and colour. Blocks that
// contain themselves are refused here, and so are drawings that expand to too many entities.
#pragma once

#include "viewer/import/dxf/drawing.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <unordered_map>
#include <vector>

namespace viewer
{

/// The maximum number of entities after expansion.
inline constexpr double kMaxPlacedEntities = 1e7;
/// The maximum depth of nested blocks.
inline constexpr int kMaxBlockNesting = 100;

/// An entity at one of its placements.
struct PlacedEntity {
    const DxfEntity& entity;
    const Affine& place;
    std::size_t layer;
    unsigned char color;
    float opacity;
    std::size_t path; ///< the number of its path of blocks, for `NamesOf`; 0 outside of blocks
};

class DxfPlacedEntities
{
  public:
    /// Throws FileError if a block contains itself, is not defined, or exceeds the limits. `drawing` must
    /// outlive the object.
    DxfPlacedEntities(std::string path, const DxfDrawing& drawing);

    /// Calls `take` for every entity that is not an insert and not hidden by its layer, in the order of the
    /// drawing. Can be repeated, with the same result. Entities on layer 0 of a block are on the layer of the
    /// insert. An insert on a frozen layer is hidden, an insert on a layer that is off is not.
    void ForEach(const std::function<void(const PlacedEntity&)>& take);

    /// The names of the blocks on a path, the outermost first.
    [[nodiscard]] std::vector<std::string> NamesOf(std::size_t path) const;

  private:
    /// The size of a block with all inserts expanded.
    struct Size {
        double entities = 0.0;
        int depth = 0;
        bool is_known = false;
        bool is_being_counted = false;
    };
    struct Path {
        std::size_t outer = 0;
        std::size_t block = 0;
    };
    /// The placement, layer and colour that a block's entities inherit from its insert.
    struct Context {
        Affine place;
        std::size_t layer = 0;
        int color = 7;
        float opacity = 1.0F;
        std::size_t path = 0;
    };

    Size SizeOf(const std::vector<DxfEntity>& entities, int depth);
    const Size& SizeOfBlock(const DxfEntity& insert, int depth);
    void Place(const std::vector<DxfEntity>& entities, const Context& context,
               const std::function<void(const PlacedEntity&)>& take);
    void PlaceInsert(const DxfInsert& insert, Context inner, const Context& outer,
                     const std::function<void(const PlacedEntity&)>& take);
    std::size_t PathTo(std::size_t outer, std::size_t block);

    std::string path_;
    const DxfDrawing& drawing_;
    std::vector<Size> sizes_; ///< by block
    std::vector<Path> paths_{Path{}};
    std::unordered_map<std::uint64_t, std::size_t> path_numbers_; ///< by outer path and block
    std::size_t floating_layer_;
};

} // namespace viewer
