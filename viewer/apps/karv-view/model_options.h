// The options of the command line that apply to models.
#pragma once

#include "viewer/apps/karv-view/options.h"
#include "viewer/scene/model.h"

#include <span>
#include <vector>

namespace viewer
{

/// Sets the colour and the opacity of the options, and moves translucent pieces to the end.
void ApplyColors(const Options& options, Model& model);

/// Throws std::runtime_error, with a text of one line, if no model has one of the categories, or if they hide
/// all pieces of all models. Each model numbers its categories from 0.
void CheckHidden(const std::vector<int>& hidden, std::span<const Model* const> models);

} // namespace viewer
