#include "geometry/KARVGraphicalEntity.h"

#include "module/guard.h"
#include "platform/host/cm/color.h"
#include "platform/host/db/entities.h"

#include <cmath>
#include <utility>

using karv::Guarded;

namespace
{

float FromPaletteChannel(Adesk::UInt32 channel)
{
    const float value = static_cast<float>(channel & 255U);
    return static_cast<float>(static_cast<double>(value) / 255.0);
}

/// The palette's colour for the low 8 bits of the index. `SetColor` differs on purpose: it uses all 16 bits
/// and multiplies by 1/255 instead of dividing.
KARVGLVertex LookUpColor(unsigned short color_index)
{
    const Adesk::UInt32 rgb = AcCmEntityColor::lookUpRGB(static_cast<Adesk::UInt8>(color_index & 255U));
    KARVGLVertex color;
    color.x = FromPaletteChannel(rgb >> 16U);
    color.y = FromPaletteChannel(rgb >> 8U);
    color.z = FromPaletteChannel(rgb);
    return color;
}

/// How far outside of a bound a coordinate may be and still count as inside. The magnitude is rounded to
/// float.
double BoundTolerance(float coordinate)
{
    constexpr double kTolerance = 1e-20;
    const float magnitude = static_cast<float>(std::fabs(static_cast<double>(coordinate)));
    return static_cast<double>(magnitude) * kTolerance + kTolerance;
}

// The plain comparison comes first because it saves the arithmetic for nearly every corner of a large face
// list. It does not change the result, because the tolerance is never negative.

void LowerTo(float point, float& low)
{
    if (low > point && static_cast<double>(low) - BoundTolerance(low) > static_cast<double>(point))
        low = point;
}

void RaiseTo(float point, float& high)
{
    if (point > high && static_cast<double>(point) > static_cast<double>(high) + BoundTolerance(high))
        high = point;
}

} // namespace

KARVGraphicalEntity::KARVGraphicalEntity()
{
    InitParameters();
}

KARVGraphicalEntity::KARVGraphicalEntity(const KARVGraphicalEntity& source) = default;
KARVGraphicalEntity::KARVGraphicalEntity(KARVGraphicalEntity&& source) noexcept = default;
KARVGraphicalEntity& KARVGraphicalEntity::operator=(const KARVGraphicalEntity& source) = default;
KARVGraphicalEntity& KARVGraphicalEntity::operator=(KARVGraphicalEntity&& source) noexcept = default;

KARVGraphicalEntity::KARVGraphicalEntity(AcDbEntity* entity, EntityType type)
{
    Guarded<L"KARVGraphicalEntity::KARVGraphicalEntity">([&] {
        InitParameters();
        if (entity == nullptr)
            return;
        entityType = type;
        color = LookUpColor(entity->colorIndex());
        CreateGLCache(entity);
    });
}

KARVGraphicalEntity::KARVGraphicalEntity(AModeler::Body* body, EntityType type, unsigned short color_index)
{
    Guarded<L"KARVGraphicalEntity::KARVGraphicalEntity">([&] {
        InitParameters();
        entityType = type;
        color = LookUpColor(color_index);
        CreateGLCache(body);
    });
}

KARVGraphicalEntity::KARVGraphicalEntity(std::vector<KARVGLFace> source, EntityType type,
                                         unsigned short color_index)
{
    Guarded<L"KARVGraphicalEntity::KARVGraphicalEntity">([&] {
        InitParameters();
        for (KARVGLFace& face : source)
            if (face.vertices.size() >= 4)
                TesselateFace(face);
            else
                face.displayList = 0;
        faces = std::move(source);
        entityType = type;
        color = LookUpColor(color_index);
        for (const KARVGLFace& face : faces) {
            for (const KARVGLVertex& corner : face.vertices) {
                if (!extentsValid) {
                    minExtent = corner;
                    maxExtent = corner;
                    extentsValid = true;
                }
                DoesPointContainExtent(corner, minExtent, maxExtent);
            }
        }
    });
}

KARVGraphicalEntity::~KARVGraphicalEntity()
{
    Guarded<L"KARVGraphicalEntity::~KARVGraphicalEntity">([&] {
        // The display lists are not deleted: copies may still draw them. They are freed with the GL context.
        std::vector<KARVGLFace>().swap(faces);
        std::vector<KARVGLVertex>().swap(lineVertices);
    });
}

KARVGraphicalEntity::EntityType KARVGraphicalEntity::GetEntityType()
{
    return Guarded<L"KARVGraphicalEntity::GetEntityType">([&] { return entityType; });
}

void KARVGraphicalEntity::SetEntityType(EntityType type)
{
    Guarded<L"KARVGraphicalEntity::SetEntityType">([&] { entityType = type; });
}

void KARVGraphicalEntity::SetColor(unsigned short color_index)
{
    Guarded<L"KARVGraphicalEntity::SetColor">([&] {
        AcCmColor palette_color;
        palette_color.setColorIndex(color_index);
        const unsigned char blue = palette_color.blue();
        const unsigned char green = palette_color.green();
        const unsigned char red = palette_color.red();
        color = KARVGLVertex(red, green, blue);
    });
}

void KARVGraphicalEntity::SetAlpha(float opacity)
{
    Guarded<L"KARVGraphicalEntity::SetAlpha">([&] { alpha = opacity; });
}

void KARVGraphicalEntity::GetExtents(KARVGLVertex& min, KARVGLVertex& max)
{
    Guarded<L"KARVGraphicalEntity::GetExtents">([&] {
        min = minExtent;
        max = maxExtent;
    });
}

int KARVGraphicalEntity::GetFaceNumber()
{
    return Guarded<L"KARVGraphicalEntity::GetFaceNumber">([&] { return static_cast<int>(faces.size()); });
}

void KARVGraphicalEntity::DoesPointContainExtent(KARVGLVertex point, KARVGLVertex& min, KARVGLVertex& max)
{
    // Called for every corner of a scene: the point is captured by value, so that it can stay in registers.
    Guarded<L"KARVGraphicalEntity::DoesPointContainExtent">([point, &min, &max] {
        LowerTo(point.x, min.x);
        LowerTo(point.y, min.y);
        LowerTo(point.z, min.z);
        RaiseTo(point.x, max.x);
        RaiseTo(point.y, max.y);
        RaiseTo(point.z, max.z);
    });
}

void KARVGraphicalEntity::InitParameters()
{
    extentsValid = false;
    maxExtent = KARVGLVertex();
    minExtent = KARVGLVertex();
    alpha = 1.0F;
}

void KARVGraphicalEntity::CreateGLCache(AcDbEntity* entity)
{
    Guarded<L"KARVGraphicalEntity::CreateGLCache">([&] {
        if (!entity->isKindOf(AcDbLine::desc()))
            return;
        const auto* line = static_cast<const AcDbLine*>(entity);
        const AcGePoint3d start = line->startPoint();
        const AcGePoint3d end = line->endPoint();
        AppendSegment(start, end);
    });
}

void KARVGraphicalEntity::AppendSegment(const AcGePoint3d& start_point, const AcGePoint3d& end_point)
{
    const KARVGLVertex start(start_point.x, start_point.y, start_point.z);
    const KARVGLVertex end(end_point.x, end_point.y, end_point.z);
    lineVertices.push_back(start);
    lineVertices.push_back(end);
    if (!extentsValid) {
        // The maximum corner starts at the origin on purpose: clients size their margins by such boxes.
        minExtent = end;
        extentsValid = true;
    }
    DoesPointContainExtent(start, minExtent, maxExtent);
    DoesPointContainExtent(end, minExtent, maxExtent);
}
