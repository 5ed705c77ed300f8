#include "tests/control/model/model_entity.h"

#include "platform/host/cm/color.h"
#include "platform/winsys/opengl.h"

#include <cmath>
#include <cstddef>
#include <utility>

namespace karv_model
{
namespace
{

double BoxTolerance(float bound)
{
    const float magnitude = static_cast<float>(std::fabs(static_cast<double>(bound)));
    return static_cast<double>(magnitude) * 1e-20 + 1e-20;
}

void GrowLow(float point, float& low)
{
    if (static_cast<double>(low) - BoxTolerance(low) > static_cast<double>(point)) {
        Meet("box grown down");
        low = point;
    }
}

void GrowHigh(float point, float& high)
{
    if (static_cast<double>(point) > static_cast<double>(high) + BoxTolerance(high)) {
        Meet("box grown up");
        high = point;
    }
}

float Channel(std::uint32_t packed, unsigned shift)
{
    const float byte = static_cast<float>((packed >> shift) & 255U);
    return static_cast<float>(static_cast<double>(byte) / 255.0);
}

Triple PaletteColor(unsigned short index)
{
    const std::uint32_t rgb = AcCmEntityColor::lookUpRGB(static_cast<Adesk::UInt8>(index & 255U));
    return {Channel(rgb, 16), Channel(rgb, 8), Channel(rgb, 0)};
}

/// Adds the calls that compile a polygon and returns the list's name. The calls that the tessellator compiles
/// into the list are left out.
std::uint32_t CompiledPolygon(GlStream& gl, ListNames& lists, const ModelFace& face)
{
    Expect(gl, "glGenLists", {1.0});
    if (lists.empty()) {
        Meet("no display list to be had");
        return 0;
    }
    const std::uint32_t list = lists.front();
    lists.pop_front();
    Meet("polygon compiled");
    Expect(gl, "gluNewTess");
    Expect(gl, "gluTessCallback", {GLU_TESS_BEGIN});
    Expect(gl, "gluTessCallback", {GLU_TESS_END});
    Expect(gl, "gluTessCallback", {GLU_TESS_ERROR});
    Expect(gl, "gluTessCallback", {GLU_TESS_VERTEX});
    Expect(gl, "glNewList", {static_cast<double>(list), GL_COMPILE});
    Expect(gl, "gluTessBeginPolygon");
    Expect(gl, "gluTessBeginContour");
    for (const Triple& corner : face.corners)
        Expect(gl, "gluTessVertex", {corner.x, corner.y, corner.z});
    Expect(gl, "gluTessEndContour");
    Expect(gl, "gluTessEndPolygon");
    Expect(gl, "glEndList");
    Expect(gl, "gluDeleteTess");
    return list;
}

double Primitive(std::size_t corners)
{
    if (corners == 3)
        return GL_TRIANGLES;
    return corners == 4 ? GL_QUADS : GL_TRIANGLE_FAN;
}

} // namespace

Triple Narrowed(const WideTriple& wide)
{
    return {static_cast<float>(wide.x), static_cast<float>(wide.y), static_cast<float>(wide.z)};
}

void GrowBox(const Triple& point, Triple& low, Triple& high)
{
    GrowLow(point.x, low.x);
    GrowLow(point.y, low.y);
    GrowLow(point.z, low.z);
    GrowHigh(point.x, high.x);
    GrowHigh(point.y, high.y);
    GrowHigh(point.z, high.z);
}

ModelEntity ModelEntity::FromFaces(GlStream& gl, ListNames& lists, std::vector<ModelFace> faces,
                                   std::int32_t type, unsigned short color_index)
{
    ModelEntity entity;
    for (ModelFace& face : faces)
        face.list = face.corners.size() >= 4 ? CompiledPolygon(gl, lists, face) : 0;
    entity.faces = std::move(faces);
    entity.type = type;
    entity.color = PaletteColor(color_index);
    for (const ModelFace& face : entity.faces) {
        for (const Triple& corner : face.corners) {
            if (!entity.box_valid) {
                entity.low = corner;
                entity.high = corner;
                entity.box_valid = true;
            }
            GrowBox(corner, entity.low, entity.high);
        }
    }
    return entity;
}

ModelEntity ModelEntity::FromLine(const WideTriple& start, const WideTriple& end, std::int32_t type,
                                  unsigned short color_index)
{
    ModelEntity entity = FromOther(type, color_index);
    const Triple a = Narrowed(start);
    const Triple b = Narrowed(end);
    entity.line_vertices = {a, b};
    // The far corner is not seeded: it stays at the origin or grows from there.
    entity.low = b;
    entity.box_valid = true;
    GrowBox(a, entity.low, entity.high);
    GrowBox(b, entity.low, entity.high);
    return entity;
}

ModelEntity ModelEntity::FromBody(AModeler::Body& body, std::int32_t type, unsigned short color_index)
{
    const auto place = [](const AModeler::Edge& edge) {
        const AcGePoint3d& point = edge.vertex()->point();
        return Narrowed({point.x, point.y, point.z});
    };
    ModelEntity entity = FromOther(type, color_index);
    for (AModeler::Face* source = body.faceList(); source != nullptr; source = source->next()) {
        ModelFace face;
        const AModeler::Edge* edge = source->edgeLoop();
        for (int i = 0; i < source->edgeCount(); ++i, edge = edge->next())
            face.corners.push_back(place(*edge));
        source->evaluatePlane();
        const AcGeVector3d& normal = source->plane().normal;
        face.normal = Narrowed({normal.x, normal.y, normal.z});
        entity.faces.push_back(face);
    }
    std::vector<AModeler::Edge*> edges;
    std::vector<AModeler::Vertex*> unused;
    body.getPhysicalEdgesAndVertices(true, true, edges, unused);
    for (const AModeler::Edge* edge : edges) {
        Meet("edge of a solid");
        const Triple start = place(*edge);
        const Triple end = place(*edge->next());
        entity.line_vertices.insert(entity.line_vertices.end(), {start, end});
        // As for a line, the far corner is not seeded.
        if (!entity.box_valid)
            entity.low = end;
        entity.box_valid = true;
        GrowBox(start, entity.low, entity.high);
        GrowBox(end, entity.low, entity.high);
    }
    return entity;
}

ModelEntity ModelEntity::FromOther(std::int32_t type, unsigned short color_index)
{
    ModelEntity entity;
    entity.type = type;
    entity.color = PaletteColor(color_index);
    return entity;
}

void ModelEntity::SetColor(unsigned short color_index)
{
    constexpr double kPerByte = 0.00392156862745098;
    AcCmColor host;
    host.setColorIndex(color_index);
    color.x = static_cast<float>(static_cast<double>(host.red()) * kPerByte);
    color.y = static_cast<float>(static_cast<double>(host.green()) * kPerByte);
    color.z = static_cast<float>(static_cast<double>(host.blue()) * kPerByte);
}

void ModelEntity::DrawLines(GlStream& gl) const
{
    if (line_vertices.size() < 2)
        return;
    Meet("lines drawn");
    Expect(gl, "glDisable", {GL_LIGHTING});
    Expect(gl, "glColor3f", {color.x, color.y, color.z});
    for (std::size_t i = 0; i + 1 < line_vertices.size(); i += 2) {
        const Triple& a = line_vertices[i];
        const Triple& b = line_vertices[i + 1];
        Expect(gl, "glBegin", {GL_LINES});
        Expect(gl, "glVertex3f", {a.x, a.y, a.z});
        Expect(gl, "glVertex3f", {b.x, b.y, b.z});
        Expect(gl, "glEnd");
    }
    Expect(gl, "glEnable", {GL_LIGHTING});
}

void ModelEntity::DrawQuads(GlStream& gl) const
{
    if (faces.empty())
        DrawLines(gl);
    Expect(gl, "glColor4f", {color.x, color.y, color.z, alpha});
    for (const ModelFace& face : faces) {
        Expect(gl, "glNormal3f", {face.normal.x, face.normal.y, face.normal.z});
        if (face.list != 0) {
            Meet("list called");
            Expect(gl, "glCallList", {static_cast<double>(face.list)});
            Expect(gl, "glGetError");
            continue;
        }
        Meet("face sent corner by corner");
        Expect(gl, "glBegin", {Primitive(face.corners.size())});
        for (const Triple& corner : face.corners)
            Expect(gl, "glVertex3f", {corner.x, corner.y, corner.z});
        Expect(gl, "glEnd");
    }
}

} // namespace karv_model
