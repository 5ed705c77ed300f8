#include "platform/winsys/frame_resolve.h"

#include "platform/winsys/gl_functions.h"
#include "platform/winsys/opengl.h"

#include <GL/glext.h>

namespace winsys
{

/// Functions are looked up, not linked: the program may intercept the library's own entry points.
struct FrameResolve::Functions {
    Functions()
    {
        Load("glGetIntegerv", get_integer);
        Load("glIsEnabled", is_enabled);
        Load("glEnable", enable);
        Load("glDisable", disable);
        Load("glGenFramebuffers", gen_framebuffers);
        Load("glDeleteFramebuffers", delete_framebuffers);
        Load("glBindFramebuffer", bind_framebuffer);
        Load("glFramebufferRenderbuffer", attach);
        Load("glGenRenderbuffers", gen_renderbuffers);
        Load("glDeleteRenderbuffers", delete_renderbuffers);
        Load("glBindRenderbuffer", bind_renderbuffer);
        Load("glRenderbufferStorage", storage);
        Load("glBlitFramebuffer", blit);
    }

    [[nodiscard]] GLint Get(GLenum name) const
    {
        GLint value = 0;
        get_integer(name, &value);
        return value;
    }

    bool complete = true;
    void(APIENTRY* get_integer)(GLenum, GLint*) = nullptr;
    GLboolean(APIENTRY* is_enabled)(GLenum) = nullptr;
    void(APIENTRY* enable)(GLenum) = nullptr;
    void(APIENTRY* disable)(GLenum) = nullptr;
    PFNGLGENFRAMEBUFFERSPROC gen_framebuffers = nullptr;
    PFNGLDELETEFRAMEBUFFERSPROC delete_framebuffers = nullptr;
    PFNGLBINDFRAMEBUFFERPROC bind_framebuffer = nullptr;
    PFNGLFRAMEBUFFERRENDERBUFFERPROC attach = nullptr;
    PFNGLGENRENDERBUFFERSPROC gen_renderbuffers = nullptr;
    PFNGLDELETERENDERBUFFERSPROC delete_renderbuffers = nullptr;
    PFNGLBINDRENDERBUFFERPROC bind_renderbuffer = nullptr;
    PFNGLRENDERBUFFERSTORAGEPROC storage = nullptr;
    PFNGLBLITFRAMEBUFFERPROC blit = nullptr;

  private:
    template <typename Function>
    void Load(const char* name, Function& function)
    {
        function = reinterpret_cast<Function>(FindGlFunction(name));
        complete = complete && function != nullptr;
    }
};

FrameResolve::FrameResolve(int width, int height)
{
    const Functions gl;
    // A lookup may also find functions that the context does not support.
    if (!gl.complete || width < 1 || height < 1 || gl.Get(GL_MAJOR_VERSION) < 3)
        return;
    const bool is_default_framebuffer =
        gl.Get(GL_READ_FRAMEBUFFER_BINDING) == 0 && gl.Get(GL_DRAW_FRAMEBUFFER_BINDING) == 0;
    if (is_default_framebuffer && gl.Get(GL_SAMPLE_BUFFERS) > 0)
        Copy(gl, width, height);
}

FrameResolve::~FrameResolve()
{
    if (framebuffer_ != 0) {
        const Functions gl;
        gl.bind_framebuffer(GL_READ_FRAMEBUFFER, 0);
        gl.delete_framebuffers(1, &framebuffer_);
        gl.delete_renderbuffers(1, &colors_);
    }
}

void FrameResolve::Copy(const Functions& gl, int width, int height)
{
    const auto renderbuffer = static_cast<GLuint>(gl.Get(GL_RENDERBUFFER_BINDING));
    gl.gen_renderbuffers(1, &colors_);
    gl.bind_renderbuffer(GL_RENDERBUFFER, colors_);
    gl.storage(GL_RENDERBUFFER, GL_RGBA8, width, height);
    gl.bind_renderbuffer(GL_RENDERBUFFER, renderbuffer);

    gl.gen_framebuffers(1, &framebuffer_);
    gl.bind_framebuffer(GL_DRAW_FRAMEBUFFER, framebuffer_);
    gl.attach(GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, colors_);
    // The scissor test would clip the copy.
    const bool scissor = gl.is_enabled(GL_SCISSOR_TEST) != GL_FALSE;
    gl.disable(GL_SCISSOR_TEST);
    gl.blit(0, 0, width, height, 0, 0, width, height, GL_COLOR_BUFFER_BIT, GL_NEAREST);
    if (scissor)
        gl.enable(GL_SCISSOR_TEST);
    gl.bind_framebuffer(GL_DRAW_FRAMEBUFFER, 0);
    gl.bind_framebuffer(GL_READ_FRAMEBUFFER, framebuffer_);
}

} // namespace winsys
