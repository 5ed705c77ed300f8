#include "viewer/apps/karv-view/model_options.h"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace viewer
{

namespace
{

/// One more than the highest category of all models.
int CategoryCountOf(std::span<const Model* const> models)
{
    int count = 0;
    for (const Model* model : models)
        count = std::max(count, model->CategoryCount());
    return count;
}

} // namespace

void ApplyColors(const Options& options, Model& model)
{
    for (Piece& piece : model.pieces) {
        piece.color = static_cast<unsigned char>(options.color.value_or(piece.color));
        piece.alpha = options.alpha.value_or(piece.alpha);
    }
    model.PutTranslucentLast();
}

void CheckHidden(const std::vector<int>& hidden, std::span<const Model* const> models)
{
    if (hidden.empty())
        return;
    const int count = CategoryCountOf(models);
    const int highest = *std::ranges::max_element(hidden);
    if (highest >= count)
        throw std::runtime_error("--hide: there is no category " + std::to_string(highest) + ", only 0 to " +
                                 std::to_string(count - 1) + " (--list prints them)");
    const auto is_hidden = [&](const Piece& piece) {
        return std::ranges::find(hidden, piece.category) != hidden.end();
    };
    if (std::ranges::all_of(
            models, [&](const Model* model) { return std::ranges::all_of(model->pieces, is_hidden); }))
        throw std::runtime_error("--hide: nothing stays visible (--list prints the categories)");
}

} // namespace viewer
