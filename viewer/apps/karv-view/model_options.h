// The options of the command line that apply to models.
#pragma once

#include "viewer/apps/karv-view/options.h"
#include "viewer/scene/model.h"

#include <span>
#include <vector>

namespace viewer
{

/// Gives the model the colour and the opacity that the options ask for. Translucent pieces come last then.
void ApplyColors(const Options& options, Model& model);

/// Throws std::runtime_error, with a text of one line, where one of the categories is in none of the models,
/// or where the categories hide every piece of all of them. Each model has its own numbers.
void CheckHidden(const std::vector<int>& hidden, std::span<const Model* const> models);

} // namespace viewer
