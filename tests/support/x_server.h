// An X server without a screen. Each test program has its own, so no windows, pointer or focus of other tests
// are on it.
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

    /// Starts Xvfb on a free display, with one screen of kWidth x kHeight pixels of depth 24, and waits until
    /// it answers. Throws std::runtime_error if it does not.
    XServer();

    /// The display in the form of the variable DISPLAY.
    [[nodiscard]] const std::string& Display() const { return display_; }
    /// Kills the server, as in a crash.
    void Kill() { process_.Kill(); }

  private:
    ChildProcess process_;
    std::string display_;
};

/// The server that all tests of this program share. The first call starts it and sets DISPLAY to it; it runs
/// until the program ends.
XServer& SharedXServer();

} // namespace karv_test
