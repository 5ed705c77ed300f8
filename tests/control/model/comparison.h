// Compares the control with the model: fields, entities, switches, and the calls of one step. Bit for bit,
// except that NaN equals NaN.
#pragma once

#include "tests/control/model/operations.h"
#include "tests/support/control_window_calls.h"
#include "tests/support/gl_recorder.h"

#include <optional>
#include <string>

namespace karv_model
{

/// Whether the two are the same number: zeros of different sign differ, NaN equals NaN.
[[nodiscard]] bool IsSame(double left, double right);

/// The first field, entity or switch that differs, or nothing.
[[nodiscard]] std::optional<std::string> StateDifference(const KARVOpenGLControl& control,
                                                         const ModelControl& model);
/// The first GL call that differs, or nothing. Pointers and the calls that the tessellator compiles into
/// lists are not compared.
[[nodiscard]] std::optional<std::string> GlDifference(const std::vector<karv_test::GlCall>& calls,
                                                      const GlStream& expected);
/// The first window-system call, or message passed to the default handling, that differs, or nothing.
[[nodiscard]] std::optional<std::string> WindowDifference(const karv_test::WindowCalls& calls,
                                                          const ModelControl& model);
[[nodiscard]] std::optional<std::string> ResultDifference(const Results& results, const Results& expected);

} // namespace karv_model
