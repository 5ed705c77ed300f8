// Shared by the modeler's tests: bodies from listed corners, and checks that hold for every body.
#pragma once

#include "platform/modeler/body.h"
#include "platform/modeler/body_builder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace karv_test
{

using Points = std::vector<AcGePoint3d>;
using Loop = std::vector<int>;

/// A builder with these points and faces, each of one loop.
inline AModeler::BodyBuilder BuilderOf(const Points& points, const std::vector<Loop>& faces)
{
    AModeler::BodyBuilder builder;
    for (const AcGePoint3d& point : points)
        builder.AddPoint(point);
    for (const Loop& face : faces)
        builder.AddFace(face);
    return builder;
}

/// Why the builder refuses; empty where it does not.
inline std::string RefusalOf(const AModeler::BodyBuilder& builder)
{
    try {
        static_cast<void>(builder.Build());
    } catch (const AModeler::BodyError& error) {
        return error.what();
    }
    return {};
}

/// Adds a face of several loops; the first is the outline.
inline void AddFaceWithHoles(AModeler::BodyBuilder& builder, const std::vector<Loop>& loops)
{
    builder.BeginFace();
    for (const Loop& loop : loops) {
        builder.BeginLoop();
        for (const int corner : loop)
            builder.AddCorner(corner);
        builder.EndLoop();
    }
}

/// A closed body without thickness: one face of these loops, and the same face the other way round.
inline AModeler::BodyBuilder LaminaOf(const std::vector<Points>& loops)
{
    AModeler::BodyBuilder builder;
    std::vector<Loop> front;
    for (const Points& loop : loops) {
        Loop& corners = front.emplace_back();
        for (const AcGePoint3d& point : loop)
            corners.push_back(builder.AddPoint(point));
    }
    AddFaceWithHoles(builder, front);
    for (Loop& loop : front)
        std::ranges::reverse(loop);
    AddFaceWithHoles(builder, front);
    return builder;
}

inline std::vector<AModeler::Face*> FacesOf(AModeler::Body& body)
{
    std::vector<AModeler::Face*> faces;
    for (AModeler::Face* face = body.faceList(); face != nullptr; face = face->next())
        faces.push_back(face);
    return faces;
}

inline std::vector<AModeler::Edge*> EdgesOf(const AModeler::Face& face)
{
    std::vector<AModeler::Edge*> edges;
    AModeler::Edge* edge = face.edgeLoop();
    for (int i = 0; i < face.edgeCount(); ++i, edge = edge->next())
        edges.push_back(edge);
    return edges;
}

inline Points CornersOf(const AModeler::Face& face)
{
    Points corners;
    for (const AModeler::Edge* edge : EdgesOf(face))
        corners.push_back(edge->vertex()->point());
    return corners;
}

inline AcGeVector3d NormalOf(AModeler::Face& face)
{
    if (!face.isPlaneEvaluated())
        face.evaluatePlane();
    return face.plane().normal;
}

inline std::vector<AModeler::Edge*> PhysicalEdgesOf(AModeler::Body& body)
{
    std::vector<AModeler::Edge*> edges;
    std::vector<AModeler::Vertex*> vertices;
    body.getPhysicalEdgesAndVertices(true, true, edges, vertices);
    return edges;
}

/// The area of the triangles of the fan from the first corner; triangles that run the other way count
/// negative.
inline double FanArea(AModeler::Face& face)
{
    const Points corners = CornersOf(face);
    const AcGeVector3d normal = NormalOf(face);
    double area = 0.0;
    for (std::size_t i = 1; i + 1 < corners.size(); ++i)
        area -= (corners[i] - corners[0]).crossProduct(corners[i + 1] - corners[0]).dotProduct(normal) / 2.0;
    return area;
}

/// The volume by the divergence theorem over the planes: positive only where the normals point outwards.
inline double VolumeOf(AModeler::Body& body)
{
    double volume = 0.0;
    for (AModeler::Face* face : FacesOf(body))
        volume +=
            NormalOf(*face).dotProduct(face->edgeLoop()->vertex()->point().asVector()) * FanArea(*face) / 3.0;
    return volume;
}

/// Corners minus edges plus faces: 2 for a ball, 0 for a ring, physical or not.
inline int EulerCharacteristic(AModeler::Body& body)
{
    std::set<const AModeler::Vertex*> vertices;
    int sides = 0;
    for (const AModeler::Face* face : FacesOf(body))
        for (const AModeler::Edge* edge : EdgesOf(*face)) {
            vertices.insert(edge->vertex());
            ++sides;
        }
    return static_cast<int>(vertices.size()) - sides / 2 + body.faceCount();
}

/// Expects that every loop closes, that every edge belongs to its face and runs against its partner, and
/// that both halves are physical or neither.
inline void ExpectSound(AModeler::Body& body)
{
    const std::vector<AModeler::Face*> faces = FacesOf(body);
    EXPECT_EQ(faces.size(), static_cast<std::size_t>(body.faceCount()));
    for (const AModeler::Face* face : faces) {
        const std::vector<AModeler::Edge*> edges = EdgesOf(*face);
        ASSERT_GE(edges.size(), 3U);
        EXPECT_EQ(edges.back()->next(), edges.front());
        for (const AModeler::Edge* edge : edges) {
            EXPECT_EQ(edge->face(), face);
            ASSERT_NE(edge->partner(), nullptr);
            EXPECT_EQ(edge->partner()->partner(), edge);
            EXPECT_EQ(edge->partner()->vertex(), edge->next()->vertex());
            EXPECT_EQ(edge->partner()->next()->vertex(), edge->vertex());
            EXPECT_EQ(edge->partner()->isPhysical(), edge->isPhysical());
        }
    }
}

/// Whether the loop goes around once and never turns the other way. Corners in one line are allowed.
inline bool IsConvexFace(AModeler::Face& face)
{
    const Points corners = CornersOf(face);
    const std::size_t count = corners.size();
    const AcGeVector3d normal = NormalOf(face);
    double whole_turn = 0.0;
    for (std::size_t i = 0; i < count; ++i) {
        const AcGeVector3d in = corners[(i + 1) % count] - corners[i];
        const AcGeVector3d out = corners[(i + 2) % count] - corners[(i + 1) % count];
        const double turn = std::atan2(-in.crossProduct(out).dotProduct(normal), in.dotProduct(out));
        if (turn < -1e-5)
            return false;
        whole_turn += turn;
    }
    constexpr double kWhole = 6.283185307179586;
    return std::fabs(whole_turn - kWhole) < 1e-3;
}

} // namespace karv_test
