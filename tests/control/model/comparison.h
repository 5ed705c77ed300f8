// The comparison of the control with the model: fields, entities, switches, and the calls of one step. Bit
// for bit, NaN equal to NaN.
#pragma once

#include "tests/control/model/operations.h"
#include "tests/support/control_window_calls.h"
#include "tests/support/gl_recorder.h"

#include <optional>
#include <string>

namespace karv_model
{

/// Whether the two are the same number: zeros differ by sign, NaN is NaN.
[[nodiscard]] bool IsSame(double left, double right);

/// The first field, entity or switch that differs.
[[nodiscard]] std::optional<std::string> StateDifference(const KARVOpenGLControl& control,
                                                         const ModelControl& model);
/// The first call of OpenGL that differs. Pointers are not compared, nor what the tessellator sends into
/// lists.
[[nodiscard]] std::optional<std::string> GlDifference(const std::vector<karv_test::GlCall>& calls,
                                                      const GlStream& expected);
/// The first call of the window system, or message left to the default handling, that differs.
[[nodiscard]] std::optional<std::string> WindowDifference(const karv_test::WindowCalls& calls,
                                                          const ModelControl& model);
[[nodiscard]] std::optional<std::string> ResultDifference(const Results& results, const Results& expected);

} // namespace karv_model
