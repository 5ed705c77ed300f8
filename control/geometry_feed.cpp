// Appends geometry to KARVOpenGLControl, and shows and hides categories.
#include "control/KARVOpenGLControl.h"

#include "module/guard.h"

#include <cstdint>
#include <utility>

using karv::Guarded;

void KARVOpenGLControl::AppendGeometry(AModeler::Body* body, KARVGraphicalEntity::EntityType type,
                                       unsigned short color, float alpha)
{
    Guarded<L"KARVOpenGLControl::AppendGeometry">([&] {
        KARVGraphicalEntity built(body, type, color);
        built.SetAlpha(alpha);
        AddEntityToCache(std::move(built));
    });
}

void KARVOpenGLControl::AppendGeometry(AcDbEntity* entity, KARVGraphicalEntity::EntityType type)
{
    Guarded<L"KARVOpenGLControl::AppendGeometry">([&] {
        KARVGraphicalEntity built(entity, type);
        AddEntityToCache(std::move(built));
    });
}

void KARVOpenGLControl::AppendGeometry(KARVGraphicalEntity entity)
{
    Guarded<L"KARVOpenGLControl::AppendGeometry">([&] { AddEntityToCache(std::move(entity)); });
}

void KARVOpenGLControl::AppendGeometry(std::vector<KARVGLFace> faces, KARVGraphicalEntity::EntityType type,
                                       unsigned short color, float alpha)
{
    Guarded<L"KARVOpenGLControl::AppendGeometry">([&] {
        KARVGraphicalEntity built(std::move(faces), type, color);
        built.SetAlpha(alpha);
        AddEntityToCache(std::move(built));
    });
}

void KARVOpenGLControl::AddEntityToCache(KARVGraphicalEntity entity)
{
    Guarded<L"KARVOpenGLControl::AddEntityToCache">([&] {
        if (computeExtentsOnAppend)
            GLDetectExtents(KARVGraphicalEntity(entity, KARVGraphicalEntity::BoxOnly{}));
        entities.push_back(std::move(entity));
        faceCount += entities.back().GetFaceNumber();
    });
}

void KARVOpenGLControl::AllocateMemory(int count)
{
    // A negative count becomes a huge size. The vector throws, and the guard catches that.
    Guarded<L"KARVOpenGLControl::AllocateMemory">(
        [&] { entities.reserve(static_cast<std::size_t>(static_cast<std::int64_t>(count))); });
}

void KARVOpenGLControl::ClearGeometry(bool /*unused*/)
{
    // Face total, extents and switches stay on purpose: geometry appended later extends the old scene.
    Guarded<L"KARVOpenGLControl::ClearGeometry">([&] { entities.clear(); });
}

void KARVOpenGLControl::EnableObject(KARVGraphicalEntity::EntityType type)
{
    Guarded<L"KARVOpenGLControl::EnableObject">([&] { disabledTypes[type] = false; });
}

void KARVOpenGLControl::DisableObject(KARVGraphicalEntity::EntityType type)
{
    Guarded<L"KARVOpenGLControl::DisableObject">([&] { disabledTypes[type] = true; });
}

int KARVOpenGLControl::GetFaceNumber()
{
    return Guarded<L"KARVOpenGLControl::GetFaceNumber">([&] { return faceCount; });
}
