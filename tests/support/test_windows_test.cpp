#include "platform/winsys/backends.h"
#include "tests/support/gl_test_window.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

using namespace karv_test;

TEST(TestWindows, ComeFromTheBackendThatWasAskedFor)
{
    UseTestWindows();
    const char* const wanted = std::getenv("KARV_TEST_BACKEND");
    EXPECT_EQ(winsys::BackendName(), wanted != nullptr ? wanted : std::string("headless"));
}
