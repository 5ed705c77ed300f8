// Draws an entity in immediate mode, in every frame.
#include "geometry/KARVGraphicalEntity.h"

#include "module/guard.h"
#include "platform/winsys/opengl.h"

using karv::Guarded;

namespace
{

void SendVertex(const KARVGLVertex& vertex)
{
    glVertex3f(vertex.x, vertex.y, vertex.z);
}

GLenum PrimitiveOf(std::size_t corner_count)
{
    switch (corner_count) {
    case 3:
        return GL_TRIANGLES;
    case 4:
        return GL_QUADS;
    default:
        return GL_TRIANGLE_FAN;
    }
}

void DrawCorners(const std::vector<KARVGLVertex>& corners)
{
    glBegin(PrimitiveOf(corners.size()));
    for (const KARVGLVertex& corner : corners)
        SendVertex(corner);
    glEnd();
}

void DrawFace(const KARVGLFace& face)
{
    glNormal3f(face.normal.x, face.normal.y, face.normal.z);
    if (face.displayList != 0) {
        glCallList(face.displayList);
        // Clears an error that the list may have raised. It is not reported.
        static_cast<void>(glGetError());
    } else {
        DrawCorners(face.vertices);
    }
}

} // namespace

void KARVGraphicalEntity::DrawObjectQuads()
{
    Guarded<L"KARVGraphicalEntity::DrawObjectQuads">([&] {
        if (faces.empty())
            DrawObjectLines();
        glColor4f(color.x, color.y, color.z, alpha);
        for (const KARVGLFace& face : faces)
            DrawFace(face);
    });
}

void KARVGraphicalEntity::DrawObjectLines()
{
    Guarded<L"KARVGraphicalEntity::DrawObjectLines">([&] {
        const std::size_t count = lineVertices.size();
        if (count < 2)
            return;
        glDisable(GL_LIGHTING);
        glColor3f(color.x, color.y, color.z);
        for (std::size_t i = 0; i < count; i += 2) {
            const KARVGLVertex& start = lineVertices.at(i);
            const KARVGLVertex& end = lineVertices.at(i + 1);
            glBegin(GL_LINES);
            SendVertex(start);
            SendVertex(end);
            glEnd();
        }
        glEnable(GL_LIGHTING);
    });
}
