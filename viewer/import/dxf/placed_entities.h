// A drawing with its blocks put where their inserts say: what is shown, where, on which layer and in which
// colour. Blocks that hold themselves are refused here, and those that blow up beyond all measure.
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

/// A drawing may show so many entities, each insert counted as often as it is put somewhere.
inline constexpr double kMaxPlacedEntities = 1e7;
/// Blocks may hold blocks so many times over.
inline constexpr int kMaxBlockNesting = 100;

/// An entity at one of its places.
struct PlacedEntity {
    const DxfEntity& entity;
    const Affine& place;
    std::size_t layer;
    unsigned char color;
    std::size_t path; ///< which blocks it comes out of; 0 for none
};

class DxfPlacedEntities
{
  public:
    /// Throws FileError where a block holds itself, is not there, or holds more than the limits allow.
    /// `drawing` must outlive the object.
    DxfPlacedEntities(std::string path, const DxfDrawing& drawing);

    /// Calls `take` for every entity that is neither an insert nor hidden by its layer, in the drawing's
    /// order; as often as wanted, always the same. Entities on layer 0 of a block are on the layer of the
    /// insert. A frozen layer hides what is inserted on it, one that is off does not.
    void ForEach(const std::function<void(const PlacedEntity&)>& take);

    /// The names of the blocks on a path, outermost first.
    [[nodiscard]] std::vector<std::string> NamesOf(std::size_t path) const;

  private:
    /// What the blocks in a block come to.
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
    /// What an insert hands down.
    struct Context {
        Affine place;
        std::size_t layer = 0;
        int color = 7;
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
