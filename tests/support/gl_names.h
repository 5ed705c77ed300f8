// The names of the functions of OpenGL 1.1 and of GLU, which are all that the module may import.
#pragma once

#include <set>
#include <string>
#include <string_view>

namespace karv_test
{

/// The words of a text, without the separators.
[[nodiscard]] std::set<std::string> Words(std::string_view text);

/// The functions of OpenGL 1.1 and of GLU.
[[nodiscard]] std::set<std::string> NamesOfGl11AndGlu();

} // namespace karv_test
