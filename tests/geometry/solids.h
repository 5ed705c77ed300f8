// Solids shared by the tests of their conversion.
#pragma once

#include "platform/modeler/primitives.h"
#include "tests/geometry/shapes.h"

#include <gtest/gtest.h>

namespace karv_test
{

using AModeler::Body;
using Entity = KARVGraphicalEntity;

inline Body UnitCube()
{
    return AModeler::MakeBox({0, 0, 0}, {1, 1, 1});
}

inline Entity EntityOf(Body& body, unsigned short color = kRed)
{
    return {&body, Entity::EntityType3, color};
}

inline AModeler::Face& FaceNumber(Body& body, int number)
{
    AModeler::Face* face = body.faceList();
    for (int i = 0; i < number; ++i)
        face = face->next();
    return *face;
}

inline void ExpectNoBox(const Entity& entity)
{
    EXPECT_FALSE(entity.extentsValid);
    EXPECT_EQ(entity.minExtent, KARVGLVertex());
    EXPECT_EQ(entity.maxExtent, KARVGLVertex());
}

} // namespace karv_test
