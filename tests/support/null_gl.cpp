#include "tests/support/null_gl.h"

#include "platform/winsys/opengl.h"

namespace karv_test
{

NullGlCounts& NullGl()
{
    static NullGlCounts counts;
    return counts;
}

} // namespace karv_test

using karv_test::NullGl;

extern "C" {

void glBegin(GLenum) {}
void glBlendFunc(GLenum, GLenum) {}
void glCallList(GLuint)
{
    ++NullGl().lists_called;
}
void glClear(GLbitfield) {}
void glClearColor(GLclampf, GLclampf, GLclampf, GLclampf) {}
void glClearDepth(GLclampd) {}
void glColor3f(GLfloat, GLfloat, GLfloat) {}
void glColor4f(GLfloat, GLfloat, GLfloat, GLfloat) {}
void glColorMaterial(GLenum, GLenum) {}
void glCullFace(GLenum) {}
void glDepthFunc(GLenum) {}
void glDisable(GLenum) {}
void glEnable(GLenum) {}
void glEnd() {}
void glEndList() {}
void glFrontFace(GLenum) {}
GLuint glGenLists(GLsizei)
{
    return static_cast<GLuint>(++NullGl().lists_compiled);
}
void glGetDoublev(GLenum, GLdouble*) {}
GLenum glGetError()
{
    return GL_NO_ERROR;
}
void glGetIntegerv(GLenum, GLint*) {}
const GLubyte* glGetString(GLenum)
{
    return nullptr;
}
void glHint(GLenum, GLenum) {}
void glLightfv(GLenum, GLenum, const GLfloat*) {}
void glLoadIdentity() {}
void glMaterialf(GLenum, GLenum, GLfloat) {}
void glMaterialfv(GLenum, GLenum, const GLfloat*) {}
void glMatrixMode(GLenum) {}
void glNewList(GLuint, GLenum) {}
void glNormal3f(GLfloat, GLfloat, GLfloat) {}
void glOrtho(GLdouble, GLdouble, GLdouble, GLdouble, GLdouble, GLdouble) {}
void glPolygonMode(GLenum, GLenum) {}
void glPopMatrix() {}
void glPushMatrix() {}
void glRotatef(GLfloat, GLfloat, GLfloat, GLfloat) {}
void glScalef(GLfloat, GLfloat, GLfloat) {}
void glShadeModel(GLenum) {}
void glTranslatef(GLfloat, GLfloat, GLfloat) {}
void glVertex3dv(const GLdouble*) {}
void glVertex3f(GLfloat, GLfloat, GLfloat)
{
    ++NullGl().vertices;
}
void glViewport(GLint, GLint, GLsizei, GLsizei) {}

void gluDeleteTess(GLUtesselator*) {}
const GLubyte* gluErrorString(GLenum)
{
    return nullptr;
}
void gluLookAt(GLdouble, GLdouble, GLdouble, GLdouble, GLdouble, GLdouble, GLdouble, GLdouble, GLdouble) {}
GLUtesselator* gluNewTess()
{
    static char tessellator = 0;
    return reinterpret_cast<GLUtesselator*>(&tessellator);
}
void gluPerspective(GLdouble, GLdouble, GLdouble, GLdouble) {}
GLint gluProject(GLdouble, GLdouble, GLdouble, const GLdouble*, const GLdouble*, const GLint*, GLdouble*,
                 GLdouble*, GLdouble*)
{
    return GL_FALSE;
}
void gluTessBeginContour(GLUtesselator*) {}
void gluTessBeginPolygon(GLUtesselator*, GLvoid*) {}
void gluTessCallback(GLUtesselator*, GLenum, GluTessCallback) {}
void gluTessEndContour(GLUtesselator*) {}
void gluTessEndPolygon(GLUtesselator*) {}
void gluTessVertex(GLUtesselator*, GLdouble*, GLvoid*) {}
}
