// An X server without a screen, for tests that need one: each test program has its own, so that no other
// test's windows, pointer or focus are on it.
#pragma once

#include "tests/support/child_process.h"

#include <memory>
#include <string>

namespace karv_test
{

class XServer
{
  public:
    static constexpr int kWidth = 1024;
    static constexpr int kHeight = 768;

    /// Starts Xvfb on a free display, with one screen of kWidth x kHeight pixels of depth 24, and returns
    /// once it answers. Throws std::runtime_error where it does not.
    XServer();

    /// What the variable DISPLAY would say.
    [[nodiscard]] const std::string& Display() const { return display_; }
    /// Ends it at once, as a crash would.
    void Kill() { process_.Kill(); }

  private:
    ChildProcess process_;
    std::string display_;
};

/// The server that this test program shares among its tests, which the variable DISPLAY names from now on. It
/// lives until the program ends.
XServer& SharedXServer();

} // namespace karv_test
