#include "tests/support/x_server.h"

#include <cstdlib>
#include <stdexcept>

#include <GL/glx.h>

namespace karv_test
{
namespace
{

Display* HoldDriver(const std::string& name)
{
    Display* display = XOpenDisplay(name.c_str());
    if (display != nullptr)
        glXQueryExtensionsString(display, DefaultScreen(display));
    return display;
}

} // namespace

/// NOTE: without -noreset the server restarts whenever its last client leaves, and does not answer for a
/// moment. With -displayfd it chooses the display number itself: two servers never choose the same.
XServer::XServer()
    : process_({"Xvfb", "-displayfd", "%fd", "-noreset", "-nolisten", "tcp", "-screen", "0",
                std::to_string(kWidth) + 'x' + std::to_string(kHeight) + "x24"})
{
    const std::string number = process_.ReadLine();
    if (number.empty())
        throw std::runtime_error("Xvfb does not start");
    display_ = ':' + number;
}

XServer& SharedXServer()
{
    static XServer server;
    // A connection that is never closed keeps the graphics driver loaded, which is unloaded with its last
    // connection: the leak checker can only name the driver's functions while it is loaded.
    static Display* const driver_holder = HoldDriver(server.Display());
    static const bool announced = setenv("DISPLAY", server.Display().c_str(), 1) == 0;
    if (!announced || driver_holder == nullptr)
        throw std::runtime_error("the X server cannot be shared");
    return server;
}

} // namespace karv_test
