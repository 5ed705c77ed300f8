#include "viewer/import/dxf/placed_entities.h"

#include "viewer/text/file_error.h"

#include <algorithm>
#include <utility>

namespace viewer
{

namespace
{

double TimesPlaced(const DxfInsert& insert)
{
    return static_cast<double>(insert.columns) * static_cast<double>(insert.rows);
}

/// Layer 0, whose entities in a block are on the layer of the insert; the number of layers if there is none.
std::size_t FloatingLayer(const DxfDrawing& drawing)
{
    const auto found = std::find_if(drawing.layers.begin(), drawing.layers.end(),
                                    [](const DxfLayer& layer) { return layer.name == "0"; });
    return static_cast<std::size_t>(found - drawing.layers.begin());
}

} // namespace

DxfPlacedEntities::DxfPlacedEntities(std::string path, const DxfDrawing& drawing)
    : path_(std::move(path)), drawing_(drawing), sizes_(drawing.blocks.size()),
      floating_layer_(FloatingLayer(drawing))
{
    if (SizeOf(drawing_.entities, 0).entities > kMaxPlacedEntities)
        throw FileError(path_, "its blocks come to more than 10 million entities");
}

DxfPlacedEntities::Size DxfPlacedEntities::SizeOf(const std::vector<DxfEntity>& entities, int depth)
{
    Size size;
    for (const DxfEntity& entity : entities) {
        size.entities += 1.0;
        if (const auto* insert = std::get_if<DxfInsert>(&entity.shape)) {
            const Size& inner = SizeOfBlock(entity, depth + 1);
            size.entities += TimesPlaced(*insert) * (1.0 + inner.entities);
            size.depth = std::max(size.depth, inner.depth + 1);
        }
    }
    return size;
}

const DxfPlacedEntities::Size& DxfPlacedEntities::SizeOfBlock(const DxfEntity& insert, int depth)
{
    const std::size_t number = std::get<DxfInsert>(insert.shape).block;
    const DxfBlock& block = drawing_.blocks[number];
    const auto fail = [&](const std::string& what) {
        throw FileError(path_,
                        "line " + std::to_string(insert.line) + ": block '" + block.name + "' " + what);
    };
    Size& size = sizes_[number];
    if (!block.is_defined)
        fail("is inserted but not there");
    if (size.is_being_counted)
        fail("is inserted into itself");
    if (!size.is_known) {
        size.is_being_counted = true;
        const Size counted = depth > kMaxBlockNesting ? Size{} : SizeOf(block.entities, depth);
        size = counted;
        size.is_known = true;
    }
    if (depth + size.depth > kMaxBlockNesting)
        fail("is nested more than " + std::to_string(kMaxBlockNesting) + " deep");
    if (size.entities > kMaxPlacedEntities)
        fail("comes to more than 10 million entities");
    return size;
}

std::size_t DxfPlacedEntities::PathTo(std::size_t outer, std::size_t block)
{
    const std::uint64_t key = static_cast<std::uint64_t>(outer) << 32U | block;
    const auto [entry, is_new] = path_numbers_.emplace(key, paths_.size());
    if (is_new)
        paths_.push_back({outer, block});
    return entry->second;
}

std::vector<std::string> DxfPlacedEntities::NamesOf(std::size_t path) const
{
    std::vector<std::string> names;
    for (; path != 0; path = paths_[path].outer)
        names.push_back(drawing_.blocks[paths_[path].block].name);
    std::reverse(names.begin(), names.end());
    return names;
}

void DxfPlacedEntities::ForEach(const std::function<void(const PlacedEntity&)>& take)
{
    Context context;
    context.layer = floating_layer_;
    Place(drawing_.entities, context, take);
}

void DxfPlacedEntities::Place(const std::vector<DxfEntity>& entities, const Context& context,
                              const std::function<void(const PlacedEntity&)>& take)
{
    for (const DxfEntity& entity : entities) {
        const std::size_t layer_number = entity.layer == floating_layer_ ? context.layer : entity.layer;
        const DxfLayer& layer = drawing_.layers[layer_number];
        int color = entity.color;
        if (color == kColorByLayer)
            color = layer.color;
        else if (color == kColorByBlock)
            color = context.color;
        float opacity = layer.opacity;
        if (entity.opacity.source == DxfOpacity::Source::Own)
            opacity = entity.opacity.value;
        else if (entity.opacity.source == DxfOpacity::Source::Block)
            opacity = context.opacity;
        if (layer.is_frozen)
            continue;
        if (const auto* insert = std::get_if<DxfInsert>(&entity.shape))
            PlaceInsert(*insert,
                        {context.place, layer_number, color, opacity,
                         insert->is_anonymous ? context.path : PathTo(context.path, insert->block)},
                        context, take);
        else if (!layer.is_off)
            take({entity, context.place, layer_number, static_cast<unsigned char>(color), opacity,
                  context.path});
    }
}

void DxfPlacedEntities::PlaceInsert(const DxfInsert& insert, Context inner, const Context& outer,
                                    const std::function<void(const PlacedEntity&)>& take)
{
    const DxfBlock& block = drawing_.blocks[insert.block];
    const Affine first = insert.placement * Translation(block.base * -1.0);
    for (int row = 0; row < insert.rows; ++row)
        for (int column = 0; column < insert.columns; ++column) {
            Affine place = first;
            place.origin = place.origin + insert.row_step * row + insert.column_step * column;
            inner.place = outer.place * place;
            Place(block.entities, inner, take);
        }
}

} // namespace viewer
