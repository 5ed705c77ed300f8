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

// NOTE: Without -noreset the server starts anew whenever its last client leaves, and then answers nobody for
// a moment. With -displayfd it chooses the display itself: two servers never choose the same.
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
    // A connection that is never closed keeps the graphics driver loaded, which goes with its last one: the
    // leak checker can only name the driver while it is there.
    static Display* const driver_holder = HoldDriver(server.Display());
    static const bool announced = setenv("DISPLAY", server.Display().c_str(), 1) == 0;
    if (!announced || driver_holder == nullptr)
        throw std::runtime_error("the X server cannot be shared");
    return server;
}

} // namespace karv_test
