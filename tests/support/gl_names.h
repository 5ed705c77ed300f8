// The names of the functions of OpenGL 1.1 and of GLU, which is all that the module may ask for.
#pragma once

#include <set>
#include <string>
#include <string_view>

namespace karv_test
{

/// The words of a text, without what stands between them.
[[nodiscard]] std::set<std::string> Words(std::string_view text);

/// The functions of both.
[[nodiscard]] std::set<std::string> NamesOfGl11AndGlu();

} // namespace karv_test
