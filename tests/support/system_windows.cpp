// Test programs on a system that has its own windows have nothing to choose.
#include "tests/support/gl_test_window.h"

namespace karv_test
{

void UseTestWindows() {}

} // namespace karv_test
