// The pre-empting entry points. Each definition calls the library. The types of its arguments state the
// meaning of those whose C type does not, and convert to the library's types.
#include "tests/support/gl_enums.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/gl_recorder_state.h"

#include "platform/winsys/opengl.h"

#include <dlfcn.h>

#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdio>
#include <stdexcept>
#include <type_traits>

namespace karv_test
{
namespace
{

struct Enum {
    GLenum value;
    operator GLenum() const { return value; }
};

struct Primitive {
    GLenum value;
    operator GLenum() const { return value; }
};

struct ClearMask {
    GLbitfield value;
    operator GLbitfield() const { return value; }
};

struct Capability {
    // No version of OpenGL assigns this value, so the library itself raises the error.
    static constexpr GLenum kUnknown = 0xFFFF0001;

    GLenum value;
    operator GLenum() const
    {
        for (const GlRefusal* refusal : Recorder().refusals)
            if (refusal->Capability() == value)
                return kUnknown;
        return value;
    }
};

template <typename Number>
struct Array {
    Number* data;
    std::size_t count;
    operator Number*() const { return data; }
};

template <typename Target>
struct Opaque {
    Target* pointer;
    operator Target*() const { return pointer; }
};

/// A pointer that may equal another argument.
struct VertexData {
    void* pointer;
    const double* location;
    operator void*() const { return pointer; }
};

std::string NumberText(double value)
{
    constexpr double kTiny = 1e-9;
    if (std::isnan(value))
        return "nan";
    if (std::fabs(value) < kTiny)
        return "0";
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", value);
    return text;
}

void Append(GlCall& call, double value, const std::string& text)
{
    call.text += (call.text.ends_with('(') ? "" : ", ") + text;
    call.values.push_back(value);
}

template <std::floating_point Number>
void Describe(GlCall& call, Number number)
{
    Append(call, number, NumberText(number));
}

template <std::integral Number>
void Describe(GlCall& call, Number number)
{
    Append(call, static_cast<double>(number), std::to_string(number));
}

void NoteEnum(GLenum value)
{
    if (Recorder().recording != nullptr)
        Recorder().recording->NoteEnum(value);
}

void Describe(GlCall& call, Enum value)
{
    NoteEnum(value);
    Append(call, value, EnumName(value));
}

void Describe(GlCall& call, Capability capability)
{
    Describe(call, Enum{capability.value});
}

void Describe(GlCall& call, Primitive value)
{
    NoteEnum(value);
    Append(call, value, PrimitiveName(value));
}

void Describe(GlCall& call, ClearMask mask)
{
    Append(call, mask, ClearMaskName(mask));
}

template <typename Number>
void Describe(GlCall& call, Array<Number> array)
{
    std::string text;
    for (std::size_t i = 0; i < array.count; ++i)
        text += (i == 0 ? "" : ", ") + NumberText(array.data[i]);
    call.text += (call.text.ends_with('(') ? "[" : ", [") + text + "]";
    call.values.insert(call.values.end(), array.data, array.data + array.count);
}

template <typename Target>
void Describe(GlCall& call, Opaque<Target> opaque)
{
    // A user-space address has fewer bits than a double's mantissa, so it is exact.
    Append(call, static_cast<double>(reinterpret_cast<std::uintptr_t>(opaque.pointer)),
           opaque.pointer != nullptr ? "ptr" : "null");
}

void Describe(GlCall& call, VertexData data)
{
    const bool same = data.pointer == static_cast<const void*>(data.location);
    Append(call, static_cast<double>(reinterpret_cast<std::uintptr_t>(data.pointer)),
           same ? "same" : (data.pointer != nullptr ? "ptr" : "null"));
}

/// Whether the GL calls inside the entry point are not recorded. The tessellator's are recorded: it makes
/// them only through the module's callbacks.
bool IsOpaque(std::string_view name)
{
    return name.starts_with("glu") && !name.starts_with("gluTess");
}

class GluScope
{
  public:
    explicit GluScope(bool opaque) : opaque_(opaque ? 1 : 0) { Recorder().inside_glu += opaque_; }
    GluScope(const GluScope&) = delete;
    GluScope& operator=(const GluScope&) = delete;
    ~GluScope() { Recorder().inside_glu -= opaque_; }

  private:
    int opaque_;
};

template <typename Entry>
Entry FindInLibrary(const char* name)
{
    void* found = dlsym(RTLD_NEXT, name);
    if (found == nullptr)
        throw std::logic_error("no library offers " + std::string(name));
    return reinterpret_cast<Entry>(found);
}

template <typename Result>
Result ToResult(std::uintptr_t answer)
{
    if constexpr (std::is_pointer_v<Result>)
        return reinterpret_cast<Result>(answer);
    else
        return static_cast<Result>(answer);
}

/// Records the call, runs the hooks, and returns the answer that replaces it, if any.
template <typename... Arguments>
std::optional<std::uintptr_t> Hear(const char* name, Arguments... arguments)
{
    RecorderState& state = Recorder();
    if (state.inside_glu > 0 || (state.recording == nullptr && state.hooks.empty() && state.answers.empty()))
        return std::nullopt;
    GlCall call{.name = name, .text = std::string(name) + "(", .values = {}};
    (Describe(call, arguments), ...);
    call.text += ")";
    if (state.recording != nullptr)
        state.recording->Note(call);
    const std::vector<GlHook*> hooks = state.hooks;
    for (GlHook* hook : hooks)
        hook->Run(name);
    for (const GlAnswer* answer : state.answers)
        if (const auto result = answer->For(call))
            return result;
    return std::nullopt;
}

template <auto Entry, typename... Arguments>
auto Forward(const char* name, Arguments... arguments)
{
    using Result = std::invoke_result_t<decltype(Entry), Arguments...>;
    static const auto library_entry = FindInLibrary<decltype(Entry)>(name);
    const std::optional<std::uintptr_t> answer = Hear(name, arguments...);
    if (answer) {
        if constexpr (std::is_void_v<Result>)
            return;
        else
            return ToResult<Result>(*answer);
    }
    const GluScope scope(IsOpaque(name));
    return library_entry(arguments...);
}

constexpr std::size_t LightParameters(GLenum name)
{
    switch (name) {
    case GL_AMBIENT:
    case GL_DIFFUSE:
    case GL_SPECULAR:
    case GL_EMISSION:
    case GL_AMBIENT_AND_DIFFUSE:
    case GL_POSITION:
    case GL_LIGHT_MODEL_AMBIENT:
        return 4;
    case GL_SPOT_DIRECTION:
    case GL_COLOR_INDEXES:
        return 3;
    default:
        return 1;
    }
}

} // namespace
} // namespace karv_test

using namespace karv_test;

void glMatrixMode(GLenum mode)
{
    Forward<glMatrixMode>(__func__, Enum{mode});
}

void glLoadIdentity()
{
    Forward<glLoadIdentity>(__func__);
}

void glPushMatrix()
{
    Forward<glPushMatrix>(__func__);
}

void glPopMatrix()
{
    Forward<glPopMatrix>(__func__);
}

void glLoadMatrixf(const GLfloat* matrix)
{
    Forward<glLoadMatrixf>(__func__, Array<const GLfloat>{matrix, 16});
}

void glLoadMatrixd(const GLdouble* matrix)
{
    Forward<glLoadMatrixd>(__func__, Array<const GLdouble>{matrix, 16});
}

void glMultMatrixf(const GLfloat* matrix)
{
    Forward<glMultMatrixf>(__func__, Array<const GLfloat>{matrix, 16});
}

void glMultMatrixd(const GLdouble* matrix)
{
    Forward<glMultMatrixd>(__func__, Array<const GLdouble>{matrix, 16});
}

void glOrtho(GLdouble left, GLdouble right, GLdouble bottom, GLdouble top, GLdouble near_value,
             GLdouble far_value)
{
    Forward<glOrtho>(__func__, left, right, bottom, top, near_value, far_value);
}

void glFrustum(GLdouble left, GLdouble right, GLdouble bottom, GLdouble top, GLdouble near_value,
               GLdouble far_value)
{
    Forward<glFrustum>(__func__, left, right, bottom, top, near_value, far_value);
}

void glScalef(GLfloat x, GLfloat y, GLfloat z)
{
    Forward<glScalef>(__func__, x, y, z);
}

void glScaled(GLdouble x, GLdouble y, GLdouble z)
{
    Forward<glScaled>(__func__, x, y, z);
}

void glTranslatef(GLfloat x, GLfloat y, GLfloat z)
{
    Forward<glTranslatef>(__func__, x, y, z);
}

void glTranslated(GLdouble x, GLdouble y, GLdouble z)
{
    Forward<glTranslated>(__func__, x, y, z);
}

void glRotatef(GLfloat angle, GLfloat x, GLfloat y, GLfloat z)
{
    Forward<glRotatef>(__func__, angle, x, y, z);
}

void glRotated(GLdouble angle, GLdouble x, GLdouble y, GLdouble z)
{
    Forward<glRotated>(__func__, angle, x, y, z);
}

void glViewport(GLint x, GLint y, GLsizei width, GLsizei height)
{
    Forward<glViewport>(__func__, x, y, width, height);
}

void glBegin(GLenum mode)
{
    Forward<glBegin>(__func__, Primitive{mode});
}

void glEnd()
{
    Forward<glEnd>(__func__);
}

void glVertex3f(GLfloat x, GLfloat y, GLfloat z)
{
    Forward<glVertex3f>(__func__, x, y, z);
}

void glVertex3d(GLdouble x, GLdouble y, GLdouble z)
{
    Forward<glVertex3d>(__func__, x, y, z);
}

void glVertex3fv(const GLfloat* vertex)
{
    Forward<glVertex3fv>(__func__, Array<const GLfloat>{vertex, 3});
}

void glVertex3dv(const GLdouble* vertex)
{
    Forward<glVertex3dv>(__func__, Array<const GLdouble>{vertex, 3});
}

void glNormal3f(GLfloat x, GLfloat y, GLfloat z)
{
    Forward<glNormal3f>(__func__, x, y, z);
}

void glNormal3fv(const GLfloat* normal)
{
    Forward<glNormal3fv>(__func__, Array<const GLfloat>{normal, 3});
}

void glColor3f(GLfloat red, GLfloat green, GLfloat blue)
{
    Forward<glColor3f>(__func__, red, green, blue);
}

void glColor3fv(const GLfloat* color)
{
    Forward<glColor3fv>(__func__, Array<const GLfloat>{color, 3});
}

void glColor4f(GLfloat red, GLfloat green, GLfloat blue, GLfloat alpha)
{
    Forward<glColor4f>(__func__, red, green, blue, alpha);
}

void glColor4fv(const GLfloat* color)
{
    Forward<glColor4fv>(__func__, Array<const GLfloat>{color, 4});
}

GLuint glGenLists(GLsizei range)
{
    return Forward<glGenLists>(__func__, range);
}

void glNewList(GLuint list, GLenum mode)
{
    Forward<glNewList>(__func__, list, Enum{mode});
}

void glEndList()
{
    Forward<glEndList>(__func__);
}

void glCallList(GLuint list)
{
    Forward<glCallList>(__func__, list);
}

void glDeleteLists(GLuint list, GLsizei range)
{
    Forward<glDeleteLists>(__func__, list, range);
}

void glEnable(GLenum capability)
{
    Forward<glEnable>(__func__, Capability{capability});
}

void glDisable(GLenum capability)
{
    Forward<glDisable>(__func__, Capability{capability});
}

GLenum glGetError()
{
    return Forward<glGetError>(__func__);
}

const GLubyte* glGetString(GLenum name)
{
    return Forward<glGetString>(__func__, Enum{name});
}

void glGetDoublev(GLenum name, GLdouble* values)
{
    Forward<glGetDoublev>(__func__, Enum{name}, Opaque<GLdouble>{values});
}

void glGetIntegerv(GLenum name, GLint* values)
{
    Forward<glGetIntegerv>(__func__, Enum{name}, Opaque<GLint>{values});
}

void glClear(GLbitfield mask)
{
    Forward<glClear>(__func__, ClearMask{mask});
}

void glClearColor(GLclampf red, GLclampf green, GLclampf blue, GLclampf alpha)
{
    Forward<glClearColor>(__func__, red, green, blue, alpha);
}

void glClearDepth(GLclampd depth)
{
    Forward<glClearDepth>(__func__, depth);
}

void glDepthFunc(GLenum function)
{
    Forward<glDepthFunc>(__func__, Enum{function});
}

void glDepthMask(GLboolean flag)
{
    Forward<glDepthMask>(__func__, flag);
}

void glFrontFace(GLenum mode)
{
    Forward<glFrontFace>(__func__, Enum{mode});
}

void glCullFace(GLenum mode)
{
    Forward<glCullFace>(__func__, Enum{mode});
}

void glPolygonMode(GLenum face, GLenum mode)
{
    Forward<glPolygonMode>(__func__, Enum{face}, Enum{mode});
}

void glShadeModel(GLenum mode)
{
    Forward<glShadeModel>(__func__, Enum{mode});
}

void glHint(GLenum target, GLenum mode)
{
    Forward<glHint>(__func__, Enum{target}, Enum{mode});
}

void glBlendFunc(GLenum source, GLenum destination)
{
    Forward<glBlendFunc>(__func__, Enum{source}, Enum{destination});
}

void glLineWidth(GLfloat width)
{
    Forward<glLineWidth>(__func__, width);
}

void glLightf(GLenum light, GLenum name, GLfloat value)
{
    Forward<glLightf>(__func__, Enum{light}, Enum{name}, value);
}

void glLightfv(GLenum light, GLenum name, const GLfloat* values)
{
    Forward<glLightfv>(__func__, Enum{light}, Enum{name},
                       Array<const GLfloat>{values, LightParameters(name)});
}

void glLightModelfv(GLenum name, const GLfloat* values)
{
    Forward<glLightModelfv>(__func__, Enum{name}, Array<const GLfloat>{values, LightParameters(name)});
}

void glMaterialf(GLenum face, GLenum name, GLfloat value)
{
    Forward<glMaterialf>(__func__, Enum{face}, Enum{name}, value);
}

void glMaterialfv(GLenum face, GLenum name, const GLfloat* values)
{
    Forward<glMaterialfv>(__func__, Enum{face}, Enum{name},
                          Array<const GLfloat>{values, LightParameters(name)});
}

void glColorMaterial(GLenum face, GLenum mode)
{
    Forward<glColorMaterial>(__func__, Enum{face}, Enum{mode});
}

void glFlush()
{
    Forward<glFlush>(__func__);
}

void glFinish()
{
    Forward<glFinish>(__func__);
}

void gluPerspective(GLdouble field_of_view, GLdouble aspect, GLdouble near_value, GLdouble far_value)
{
    Forward<gluPerspective>(__func__, field_of_view, aspect, near_value, far_value);
}

void gluLookAt(GLdouble eye_x, GLdouble eye_y, GLdouble eye_z, GLdouble center_x, GLdouble center_y,
               GLdouble center_z, GLdouble up_x, GLdouble up_y, GLdouble up_z)
{
    Forward<gluLookAt>(__func__, eye_x, eye_y, eye_z, center_x, center_y, center_z, up_x, up_y, up_z);
}

GLint gluProject(GLdouble x, GLdouble y, GLdouble z, const GLdouble* model, const GLdouble* projection,
                 const GLint* viewport, GLdouble* window_x, GLdouble* window_y, GLdouble* window_z)
{
    return Forward<gluProject>(__func__, x, y, z, Opaque<const GLdouble>{model},
                               Opaque<const GLdouble>{projection}, Opaque<const GLint>{viewport},
                               Opaque<GLdouble>{window_x}, Opaque<GLdouble>{window_y},
                               Opaque<GLdouble>{window_z});
}

const GLubyte* gluErrorString(GLenum error)
{
    return Forward<gluErrorString>(__func__, Enum{error});
}

GLUtesselator* gluNewTess()
{
    return Forward<gluNewTess>(__func__);
}

void gluDeleteTess(GLUtesselator* tess)
{
    Forward<gluDeleteTess>(__func__, Opaque<GLUtesselator>{tess});
}

void gluTessCallback(GLUtesselator* tess, GLenum which, GluTessCallback callback)
{
    using Function = std::remove_pointer_t<GluTessCallback>;
    Forward<gluTessCallback>(__func__, Opaque<GLUtesselator>{tess}, Enum{which}, Opaque<Function>{callback});
}

void gluTessProperty(GLUtesselator* tess, GLenum which, GLdouble value)
{
    Forward<gluTessProperty>(__func__, Opaque<GLUtesselator>{tess}, Enum{which}, value);
}

void gluTessNormal(GLUtesselator* tess, GLdouble x, GLdouble y, GLdouble z)
{
    Forward<gluTessNormal>(__func__, Opaque<GLUtesselator>{tess}, x, y, z);
}

void gluTessBeginPolygon(GLUtesselator* tess, void* data)
{
    Forward<gluTessBeginPolygon>(__func__, Opaque<GLUtesselator>{tess}, Opaque<void>{data});
}

void gluTessBeginContour(GLUtesselator* tess)
{
    Forward<gluTessBeginContour>(__func__, Opaque<GLUtesselator>{tess});
}

void gluTessVertex(GLUtesselator* tess, GLdouble* location, void* data)
{
    Forward<gluTessVertex>(__func__, Opaque<GLUtesselator>{tess}, Array<GLdouble>{location, 3},
                           VertexData{data, location});
}

void gluTessEndContour(GLUtesselator* tess)
{
    Forward<gluTessEndContour>(__func__, Opaque<GLUtesselator>{tess});
}

void gluTessEndPolygon(GLUtesselator* tess)
{
    Forward<gluTessEndPolygon>(__func__, Opaque<GLUtesselator>{tess});
}
