// The choice of the backend for the windows of a test program.
#include "platform/winsys/backend.h"
#include "platform/winsys/backends.h"
#include "tests/support/gl_test_window.h"
#include "tests/support/x_server.h"

#include <cstdlib>
#include <string_view>

namespace karv_test
{

void UseTestWindows()
{
    static bool is_first = true;
    const char* const variable = std::getenv("KARV_TEST_BACKEND");
    const std::string_view name = variable != nullptr ? variable : "headless";
    // BackendName before the first choice would install the default backend, which depends on the machine.
    if (is_first || winsys::BackendName() != name)
        winsys::UseBackend(name == "x11" ? winsys::MakeX11Backend(SharedXServer().Display())
                                         : winsys::MakeHeadlessBackend());
    is_first = false;
}

} // namespace karv_test
