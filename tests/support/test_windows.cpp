// Which backend serves the windows of a test program.
#include "platform/winsys/backend.h"
#include "platform/winsys/provider.h"
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
    const std::string_view name = variable == nullptr ? "headless" : variable;
    // To ask for the name before a choice was made would install the default, whatever that is here.
    if (is_first || winsys::BackendName() != name)
        winsys::UseBackend(name == "x11" ? winsys::MakeX11Backend(SharedXServer().Display())
                                         : winsys::MakeHeadlessBackend());
    is_first = false;
}

} // namespace karv_test
