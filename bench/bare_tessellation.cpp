#include "bench/bare_tessellation.h"

namespace karv_bench
{

namespace
{

void CALLBACK BeginPrimitive(GLenum type)
{
    glBegin(type);
}

void CALLBACK EndPrimitive()
{
    glEnd();
}

void CALLBACK IgnoreError(GLenum code)
{
    static_cast<void>(gluErrorString(code));
}

void CALLBACK SendVertex(void* coordinates)
{
    glVertex3dv(static_cast<const GLdouble*>(coordinates));
}

} // namespace

GLuint BareTessellation::Compile(std::span<const KARVGLVertex> corners)
{
    const GLuint list = glGenLists(1);
    if (list == 0)
        return 0;
    GLUtesselator* const tess = gluNewTess();
    gluTessCallback(tess, GLU_TESS_BEGIN, reinterpret_cast<GluTessCallback>(BeginPrimitive));
    gluTessCallback(tess, GLU_TESS_END, reinterpret_cast<GluTessCallback>(EndPrimitive));
    gluTessCallback(tess, GLU_TESS_ERROR, reinterpret_cast<GluTessCallback>(IgnoreError));
    gluTessCallback(tess, GLU_TESS_VERTEX, reinterpret_cast<GluTessCallback>(SendVertex));
    coordinates_.resize(corners.size());
    glNewList(list, GL_COMPILE);
    gluTessBeginPolygon(tess, nullptr);
    gluTessBeginContour(tess);
    for (std::size_t i = 0; i < corners.size(); ++i) {
        coordinates_[i] = {corners[i].x, corners[i].y, corners[i].z};
        gluTessVertex(tess, coordinates_[i].data(), coordinates_[i].data());
    }
    gluTessEndContour(tess);
    gluTessEndPolygon(tess);
    glEndList();
    gluDeleteTess(tess);
    return list;
}

} // namespace karv_bench
