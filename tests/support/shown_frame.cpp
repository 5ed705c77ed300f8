#include "tests/support/shown_frame.h"

#include "platform/winsys/opengl.h"

namespace karv_test
{

ShownFrame ReadShownFrame(int width, int height)
{
    ShownFrame frame{.width = width, .height = height, .rgb = {}};
    frame.rgb.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 3);
    GLint alignment = 0;
    glGetIntegerv(GL_PACK_ALIGNMENT, &alignment);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, width, height, GL_RGB, GL_UNSIGNED_BYTE, frame.rgb.data());
    glPixelStorei(GL_PACK_ALIGNMENT, alignment);
    return frame;
}

MSG DispatchNextMessage()
{
    MSG message{};
    if (GetMessageW(&message, nullptr, 0, 0) > 0)
        DispatchMessageW(&message);
    return message;
}

} // namespace karv_test
