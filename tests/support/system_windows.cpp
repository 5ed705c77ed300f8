// On a system with its own windows test programs have no backend to choose.
#include "tests/support/gl_test_window.h"

namespace karv_test
{

void UseTestWindows() {}

} // namespace karv_test
