// Geometry passed to the control in its several forms.
#include "tests/control/model/operations.h"

#include "platform/host/db/entities.h"
#include "platform/modeler/primitives.h"

#include <algorithm>
#include <cmath>
#include <memory>

namespace karv_model
{
namespace
{

Triple DrawPlace(Random& random)
{
    // Far to the left and below in most standard views, so that frames skip some entities.
    if (random.Chance(30))
        return Narrowed(
            {random.Uniform(-400.0, -20.0), random.Uniform(-400.0, 100.0), random.Uniform(-400.0, -20.0)});
    return Narrowed({random.Uniform(-5.0, 5.0), random.Uniform(-5.0, 5.0), random.Uniform(-5.0, 5.0)});
}

/// Polygons for the tessellator are finite and of moderate size; its result for others is not compared.
std::vector<Triple> DrawPolygon(Random& random, int count)
{
    const Triple center = DrawPlace(random);
    const double radius = random.Uniform(0.1, 3.0);
    const int shape = random.Below(5);
    std::vector<Triple> corners;
    for (int i = 0; i < count; ++i) {
        // Shape 1 crosses itself, 2 is concave, 3 lies on one line, 4 repeats its corners.
        const int step = shape == 1 ? i * 2 : (shape == 4 ? i / 2 : i);
        const double angle = 6.283185307179586 * step / count;
        const double reach = shape == 2 && i % 2 == 1 ? radius * 0.2 : radius;
        const double across = shape == 3 ? 0.0 : std::sin(angle) * reach;
        corners.push_back(Narrowed({center.x + std::cos(angle) * reach, center.y, center.z + across}));
    }
    return corners;
}

std::vector<Triple> DrawCorners(Random& random)
{
    const int count = random.Chance(55) ? 3 : random.Below(8);
    if (count >= 4)
        return DrawPolygon(random, count);
    std::vector<Triple> corners;
    const Triple place = DrawPlace(random);
    for (int i = 0; i < count; ++i) {
        const Triple offset = Narrowed(random.Point());
        corners.push_back(
            random.Chance(20) ? offset : Triple{place.x + offset.x, place.y + offset.y, place.z + offset.z});
    }
    return corners;
}

std::vector<ModelFace> DrawFaces(Random& random)
{
    std::vector<ModelFace> faces(static_cast<std::size_t>(random.Below(4)));
    for (ModelFace& face : faces) {
        face.corners = DrawCorners(random);
        face.normal = Narrowed(random.Point());
        // A list name that a client sets is overwritten.
        face.list = random.Chance(10) ? 77U : 0U;
    }
    return faces;
}

KARVGLVertex ToVertex(const Triple& value)
{
    KARVGLVertex vertex;
    vertex.x = value.x;
    vertex.y = value.y;
    vertex.z = value.z;
    return vertex;
}

std::vector<KARVGLFace> ToFaces(const std::vector<ModelFace>& faces)
{
    std::vector<KARVGLFace> result;
    for (const ModelFace& face : faces) {
        KARVGLFace& made = result.emplace_back();
        for (const Triple& corner : face.corners)
            made.vertices.push_back(ToVertex(corner));
        made.normal = ToVertex(face.normal);
        made.displayList = face.list;
    }
    return result;
}

std::string FacesText(const std::vector<ModelFace>& faces)
{
    std::string text = "{";
    for (const ModelFace& face : faces) {
        text += CallText("face normal", {face.normal.x, face.normal.y, face.normal.z});
        for (const Triple& corner : face.corners)
            text += CallText("", {corner.x, corner.y, corner.z});
    }
    return text + "}";
}

unsigned short DrawColorIndex(Random& random)
{
    return static_cast<unsigned short>(random.Chance(20) ? random.Integer() : random.Below(260));
}

KARVGraphicalEntity::EntityType ToType(std::int32_t type)
{
    return static_cast<KARVGraphicalEntity::EntityType>(type);
}

Operation DrawAppendFaces(Random& random)
{
    const std::vector<ModelFace> faces = DrawFaces(random);
    const std::int32_t type = random.Category();
    const unsigned short color = DrawColorIndex(random);
    const float alpha = random.Single();
    return MakeOperation(
        CallText("AppendGeometry", {static_cast<double>(type), static_cast<double>(color), alpha}) +
            FacesText(faces),
        [=](Bench& bench) { bench.control.AppendGeometry(ToFaces(faces), ToType(type), color, alpha); },
        [=](ModelControl& model) {
            ModelEntity entity = ModelEntity::FromFaces(model.gl, model.outside.lists, faces, type, color);
            entity.alpha = alpha;
            model.AddEntityToCache(entity);
        });
}

WideTriple DrawLineEnd(Random& random)
{
    if (random.Chance(50))
        return random.Point();
    const Triple place = DrawPlace(random);
    return {place.x, place.y, place.z};
}

Operation DrawAppendLine(Random& random)
{
    const WideTriple start = DrawLineEnd(random);
    const WideTriple end = DrawLineEnd(random);
    const std::int32_t type = random.Category();
    const unsigned short color = DrawColorIndex(random);
    return MakeOperation(
        CallText("AppendGeometry line", {static_cast<double>(type), static_cast<double>(color), start.x,
                                         start.y, start.z, end.x, end.y, end.z}),
        [=](Bench& bench) {
            AcDbLine line(ToPoint(start), ToPoint(end));
            line.setColorIndex(color);
            bench.control.AppendGeometry(&line, ToType(type));
        },
        [=](ModelControl& model) { model.AddEntityToCache(ModelEntity::FromLine(start, end, type, color)); });
}

Operation DrawAppendOther(Random& random)
{
    const std::int32_t type = random.Category();
    const unsigned short color = DrawColorIndex(random);
    const bool is_null = random.Chance(50);
    return MakeOperation(
        CallText(is_null ? "AppendGeometry null" : "AppendGeometry circle",
                 {static_cast<double>(type), static_cast<double>(color)}),
        [=](Bench& bench) {
            AcDbCircle circle(AcGePoint3d(1.0, 2.0, 3.0), AcGeVector3d::kZAxis, 4.0);
            circle.setColorIndex(color);
            bench.control.AppendGeometry(is_null ? nullptr : &circle, ToType(type));
        },
        [=](ModelControl& model) {
            model.AddEntityToCache(is_null ? ModelEntity() : ModelEntity::FromOther(type, color));
        });
}

/// A box (kind 0), or a prism over an L whose caps are one concave face each (kind 1) or split (kind 2).
/// Solids are finite and enclose a volume.
struct SolidShape {
    AcGePoint3d corner;
    AcGeVector3d size;
    int kind = 0;

    [[nodiscard]] AModeler::Body Make() const
    {
        const AcGePoint3d& c = corner;
        if (kind == 0)
            return AModeler::MakeBox(c, c + size);
        const AcGeVector3d right{size.x, 0.0, 0.0};
        const AcGeVector3d up{0.0, size.y, 0.0};
        const AcGePoint3d inner = c + right * 0.4 + up * 0.4;
        if (kind == 2)
            return AModeler::MakePrism(Outline(inner), {0.0, 0.0, size.z});
        // The modeler keeps convex caps whole; their corner is moved inwards afterwards.
        const AcGePoint3d outer = c + right * 0.8 + up * 0.8;
        AModeler::Body body = AModeler::MakePrism(Outline(outer), {0.0, 0.0, size.z});
        for (AModeler::Vertex& vertex : body.vertices_)
            if (vertex.point_.x == outer.x && vertex.point_.y == outer.y)
                vertex.point_ = {inner.x, inner.y, vertex.point_.z};
        return body;
    }

    /// The L with this corner in the place of its inner one.
    [[nodiscard]] AModeler::Profile Outline(const AcGePoint3d& fourth) const
    {
        const AcGePoint3d& c = corner;
        const AcGeVector3d right{size.x, 0.0, 0.0};
        const AcGeVector3d up{0.0, size.y, 0.0};
        return {{c, c + right, c + right + up * 0.4, fourth, c + right * 0.4 + up, c + up}};
    }
};

Operation DrawAppendBody(Random& random)
{
    const Triple place = DrawPlace(random);
    const SolidShape shape{{place.x, place.y, place.z},
                           {random.Uniform(0.1, 3.0), random.Uniform(0.1, 3.0), random.Uniform(0.1, 3.0)},
                           random.Below(3)};
    // Made before the operation, because the modeler splits faces with GLU, too.
    const auto body = std::make_shared<AModeler::Body>(shape.Make());
    const std::int32_t type = random.Category();
    const unsigned short color = DrawColorIndex(random);
    const float alpha = random.Single();
    return MakeOperation(
        CallText("AppendGeometry solid", {static_cast<double>(type), static_cast<double>(color), alpha,
                                          static_cast<double>(shape.kind), shape.corner.x, shape.corner.y,
                                          shape.corner.z, shape.size.x, shape.size.y, shape.size.z}),
        [=](Bench& bench) { bench.control.AppendGeometry(body.get(), ToType(type), color, alpha); },
        [=](ModelControl& model) {
            ModelEntity entity = ModelEntity::FromBody(*body, type, color);
            entity.alpha = alpha;
            model.AddEntityToCache(entity);
        });
}

/// The changes that a client may make to an entity of its own.
struct Changes {
    bool color_set = false;
    unsigned short color = 0;
    bool alpha_set = false;
    float alpha = 0.0F;
    bool type_set = false;
    std::int32_t type = 0;
};

Changes DrawChanges(Random& random)
{
    return {random.Chance(50), DrawColorIndex(random), random.Chance(50),
            random.Single(),   random.Chance(50),      random.Category()};
}

Operation DrawAppendEntity(Random& random)
{
    const std::vector<ModelFace> faces = DrawFaces(random);
    const bool is_default = random.Chance(30);
    const std::int32_t type = random.Category();
    const unsigned short color = DrawColorIndex(random);
    const Changes changes = DrawChanges(random);
    const int times = random.Chance(20) ? 2 : 1;
    return MakeOperation(
        CallText(
            "AppendGeometry entity, default, type, color, times, color set to, alpha set to, type set to",
            {is_default ? 1.0 : 0.0, static_cast<double>(type), static_cast<double>(color),
             static_cast<double>(times), changes.color_set ? changes.color : -1.0,
             changes.alpha_set ? changes.alpha : -1.0, changes.type_set ? changes.type : -1.0}) +
            FacesText(faces),
        [=](Bench& bench) {
            KARVGraphicalEntity entity =
                is_default ? KARVGraphicalEntity() : KARVGraphicalEntity(ToFaces(faces), ToType(type), color);
            if (changes.color_set)
                entity.SetColor(changes.color);
            if (changes.alpha_set)
                entity.SetAlpha(changes.alpha);
            if (changes.type_set)
                entity.SetEntityType(ToType(changes.type));
            for (int i = 0; i < times; ++i)
                bench.control.AppendGeometry(entity);
        },
        [=](ModelControl& model) {
            ModelEntity entity =
                is_default ? ModelEntity()
                           : ModelEntity::FromFaces(model.gl, model.outside.lists, faces, type, color);
            if (changes.color_set)
                entity.SetColor(changes.color);
            if (changes.alpha_set)
                entity.alpha = changes.alpha;
            if (changes.type_set)
                entity.type = changes.type;
            for (int i = 0; i < times; ++i)
                model.AddEntityToCache(entity);
        });
}

Operation DrawAllocateMemory(Random& random)
{
    constexpr int kCounts[] = {0, 1, 5, 40, -1, -2147483647 - 1, 2};
    const int count = random.Of(kCounts);
    return MakeOperation(
        CallText("AllocateMemory", {static_cast<double>(count)}),
        [=](Bench& bench) {
            const std::size_t before = bench.control.entities.capacity();
            bench.control.AllocateMemory(count);
            const std::size_t after = bench.control.entities.capacity();
            const std::size_t wanted = count < 0 ? 0 : static_cast<std::size_t>(count);
            return Results{after == std::max(before, wanted) ? 1.0 : 0.0};
        },
        [=](ModelControl& model) {
            // The container refuses a negative count, which is reported as a fault.
            model.faults += count < 0 ? 1 : 0;
            return Results{1.0};
        });
}

Operation DrawClear(Random& random)
{
    const bool argument = random.Chance(50);
    return MakeOperation(
        CallText("ClearGeometry", {argument ? 1.0 : 0.0}),
        [=](Bench& bench) { bench.control.ClearGeometry(argument); },
        [](ModelControl& model) { model.entities.clear(); });
}

} // namespace

const std::vector<Kind>& GeometryKinds()
{
    static const std::vector<Kind> kinds = {
        {40, DrawAppendFaces},  {25, DrawAppendLine},    {20, DrawAppendBody}, {8, DrawAppendOther},
        {12, DrawAppendEntity}, {4, DrawAllocateMemory}, {4, DrawClear}};
    return kinds;
}

} // namespace karv_model
