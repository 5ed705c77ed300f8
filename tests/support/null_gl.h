// An OpenGL that does nothing: the program's entry points pre-empt the libraries' for the module, so that the
// cost of a frame or an append is the module's own. Some calls are counted, to show that frames were drawn.
#pragma once

#include <cstddef>

namespace karv_test
{

struct NullGlCounts {
    std::size_t lists_called = 0;
    std::size_t lists_compiled = 0;
    std::size_t vertices = 0; ///< sent to be drawn
};

[[nodiscard]] NullGlCounts& NullGl();

} // namespace karv_test
