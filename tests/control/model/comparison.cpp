#include "tests/control/model/comparison.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdio>

namespace karv_model
{
namespace
{

struct Field {
    const char* name;
    double value;
};

std::string Exact(double value)
{
    char text[40];
    std::snprintf(text, sizeof text, "%.17g", value);
    return text;
}

std::string Differs(const std::string& what, double value, double expected)
{
    return what + " is " + Exact(value) + ", expected " + Exact(expected);
}

template <typename Pointer>
double AddressOf(Pointer pointer)
{
    // A user-space address has fewer bits than a double's mantissa, so it is exact.
    return static_cast<double>(std::bit_cast<std::uintptr_t>(pointer));
}

std::vector<Field> CameraFields(const KARVGLCamera& camera)
{
    return {{"camera.position.x", camera.position.x},
            {"camera.position.y", camera.position.y},
            {"camera.position.z", camera.position.z},
            {"camera.target.x", camera.target.x},
            {"camera.target.y", camera.target.y},
            {"camera.target.z", camera.target.z},
            {"camera.xAxis.x", camera.xAxis.x},
            {"camera.xAxis.y", camera.xAxis.y},
            {"camera.xAxis.z", camera.xAxis.z},
            {"camera.yAxis.x", camera.yAxis.x},
            {"camera.yAxis.y", camera.yAxis.y},
            {"camera.yAxis.z", camera.yAxis.z},
            {"camera.zAxis.x", camera.zAxis.x},
            {"camera.zAxis.y", camera.zAxis.y},
            {"camera.zAxis.z", camera.zAxis.z},
            {"camera.upVector.x", camera.upVector.x},
            {"camera.upVector.y", camera.upVector.y},
            {"camera.upVector.z", camera.upVector.z},
            {"camera.aspect", camera.aspect},
            {"camera.nearPlane", camera.nearPlane},
            {"camera.farPlane", camera.farPlane},
            {"camera.perspectiveOn", camera.perspectiveOn ? 1.0 : 0.0},
            {"camera.fieldOfView", camera.fieldOfView},
            {"camera.orthoZoom", camera.orthoZoom}};
}

std::vector<double> CameraValues(const ModelCamera& camera)
{
    return {camera.position.x,    camera.position.y,
            camera.position.z,    camera.target.x,
            camera.target.y,      camera.target.z,
            camera.x_axis.x,      camera.x_axis.y,
            camera.x_axis.z,      camera.y_axis.x,
            camera.y_axis.y,      camera.y_axis.z,
            camera.z_axis.x,      camera.z_axis.y,
            camera.z_axis.z,      camera.up_vector.x,
            camera.up_vector.y,   camera.up_vector.z,
            camera.aspect,        camera.near_plane,
            camera.far_plane,     camera.perspective_on ? 1.0 : 0.0,
            camera.field_of_view, camera.ortho_zoom};
}

std::vector<Field> ControlFields(const KARVOpenGLControl& control)
{
    return {{"faceCount", static_cast<double>(control.faceCount)},
            {"lastMousePoint.x", control.lastMousePoint.x},
            {"lastMousePoint.y", control.lastMousePoint.y},
            {"pendingPanX", control.pendingPanX},
            {"pendingPanZ", control.pendingPanZ},
            {"fieldOfView", control.fieldOfView},
            {"zoomFactor", control.zoomFactor},
            {"pendingRotateX", control.pendingRotateX},
            {"pendingRotateZ", control.pendingRotateZ},
            {"panScale", control.panScale},
            {"extentsSeeded", control.extentsSeeded ? 1.0 : 0.0},
            {"extentsMax.x", control.extentsMax.x},
            {"extentsMax.y", control.extentsMax.y},
            {"extentsMax.z", control.extentsMax.z},
            {"extentsMin.x", control.extentsMin.x},
            {"extentsMin.y", control.extentsMin.y},
            {"extentsMin.z", control.extentsMin.z},
            {"centroid.x", control.centroid.x},
            {"centroid.y", control.centroid.y},
            {"centroid.z", control.centroid.z},
            {"sceneSize", control.sceneSize},
            {"cameraSetByCaller", control.cameraSetByCaller ? 1.0 : 0.0},
            {"mouseRotates", control.mouseRotates ? 1.0 : 0.0},
            {"mousePans", control.mousePans ? 1.0 : 0.0},
            {"mouseZooms", control.mouseZooms ? 1.0 : 0.0},
            {"metricsFactor", control.metricsFactor},
            {"computeExtentsOnAppend", control.computeExtentsOnAppend ? 1.0 : 0.0},
            {"debugCubeAngle", static_cast<double>(control.debugCubeAngle)},
            {"hDC", AddressOf(control.hDC)},
            {"hRC", AddressOf(control.hRC)},
            {"pixelFormat", static_cast<double>(control.pixelFormat)},
            {"createRect.left", static_cast<double>(control.createRect.left)},
            {"createRect.top", static_cast<double>(control.createRect.top)},
            {"createRect.right", static_cast<double>(control.createRect.right)},
            {"createRect.bottom", static_cast<double>(control.createRect.bottom)},
            {"initialRect.left", static_cast<double>(control.initialRect.left)},
            {"initialRect.top", static_cast<double>(control.initialRect.top)},
            {"initialRect.right", static_cast<double>(control.initialRect.right)},
            {"initialRect.bottom", static_cast<double>(control.initialRect.bottom)},
            {"renderStarted", control.renderStarted ? 1.0 : 0.0},
            {"backgroundColor[0]", control.backgroundColor[0]},
            {"backgroundColor[1]", control.backgroundColor[1]},
            {"backgroundColor[2]", control.backgroundColor[2]},
            {"framesPerSecond", static_cast<double>(control.framesPerSecond)},
            {"invertPanX", control.invertPanX ? 1.0 : 0.0},
            {"aspectRatio", control.aspectRatio},
            {"renderMode", static_cast<double>(control.renderMode)},
            {"userControlEnabled", control.userControlEnabled ? 1.0 : 0.0},
            {"multisampleOn", control.multisampleOn ? 1.0 : 0.0},
            {"timerId", static_cast<double>(control.timerId)},
            {"number of entities", static_cast<double>(control.entities.size())},
            {"number of switches", static_cast<double>(control.disabledTypes.size())}};
}

std::vector<double> ControlValues(const ModelControl& model)
{
    const auto number = [](auto value) { return static_cast<double>(value); };
    return {number(model.face_count),
            model.last_mouse_x,
            model.last_mouse_y,
            model.pending_pan_x,
            model.pending_pan_z,
            model.field_of_view,
            model.zoom_factor,
            model.pending_rotate_x,
            model.pending_rotate_z,
            model.pan_scale,
            number(model.extents_seeded),
            model.extents_max.x,
            model.extents_max.y,
            model.extents_max.z,
            model.extents_min.x,
            model.extents_min.y,
            model.extents_min.z,
            model.centroid.x,
            model.centroid.y,
            model.centroid.z,
            model.scene_size,
            number(model.camera_set_by_caller),
            number(model.mouse_rotates),
            number(model.mouse_pans),
            number(model.mouse_zooms),
            model.metrics_factor,
            number(model.compute_extents_on_append),
            number(model.debug_cube_angle),
            model.device_context,
            model.rendering_context,
            model.pixel_format,
            number(model.create_rect.left),
            number(model.create_rect.top),
            number(model.create_rect.right),
            number(model.create_rect.bottom),
            number(model.initial_rect.left),
            number(model.initial_rect.top),
            number(model.initial_rect.right),
            number(model.initial_rect.bottom),
            number(model.render_started),
            model.background.x,
            model.background.y,
            model.background.z,
            number(model.frames_per_second),
            number(model.invert_pan_x),
            model.aspect_ratio,
            number(model.render_mode),
            number(model.user_control_enabled),
            number(model.multisample_on),
            model.timer_id,
            number(model.entities.size()),
            number(model.disabled_types.size())};
}

std::optional<std::string> FieldDifference(const std::vector<Field>& fields,
                                           const std::vector<double>& expected)
{
    if (fields.size() != expected.size())
        return "the comparison lists " + std::to_string(fields.size()) + " and " +
               std::to_string(expected.size()) + " fields";
    for (std::size_t i = 0; i < fields.size(); ++i)
        if (!IsSame(fields[i].value, expected[i]))
            return Differs(fields[i].name, fields[i].value, expected[i]);
    return std::nullopt;
}

void Add(std::vector<double>& values, const KARVGLVertex& vertex)
{
    values.insert(values.end(), {vertex.x, vertex.y, vertex.z});
}

void Add(std::vector<double>& values, const Triple& triple)
{
    values.insert(values.end(), {triple.x, triple.y, triple.z});
}

/// An entity as one row of numbers.
std::vector<double> EntityValues(const KARVGraphicalEntity& entity)
{
    std::vector<double> values = {static_cast<double>(entity.entityType), entity.alpha,
                                  entity.extentsValid ? 1.0 : 0.0};
    Add(values, entity.color);
    Add(values, entity.minExtent);
    Add(values, entity.maxExtent);
    values.push_back(static_cast<double>(entity.lineVertices.size()));
    for (const KARVGLVertex& vertex : entity.lineVertices)
        Add(values, vertex);
    for (const KARVGLFace& face : entity.faces) {
        values.push_back(static_cast<double>(face.displayList));
        Add(values, face.normal);
        values.push_back(static_cast<double>(face.vertices.size()));
        for (const KARVGLVertex& vertex : face.vertices)
            Add(values, vertex);
    }
    return values;
}

std::vector<double> EntityValues(const ModelEntity& entity)
{
    std::vector<double> values = {static_cast<double>(entity.type), entity.alpha,
                                  entity.box_valid ? 1.0 : 0.0};
    Add(values, entity.color);
    Add(values, entity.low);
    Add(values, entity.high);
    values.push_back(static_cast<double>(entity.line_vertices.size()));
    for (const Triple& vertex : entity.line_vertices)
        Add(values, vertex);
    for (const ModelFace& face : entity.faces) {
        values.push_back(static_cast<double>(face.list));
        Add(values, face.normal);
        values.push_back(static_cast<double>(face.corners.size()));
        for (const Triple& corner : face.corners)
            Add(values, corner);
    }
    return values;
}

std::optional<std::string> EntityDifference(const KARVOpenGLControl& control, const ModelControl& model)
{
    for (std::size_t i = 0; i < model.entities.size(); ++i) {
        const auto difference =
            ResultDifference(EntityValues(control.entities.at(i)), EntityValues(model.entities[i]));
        if (difference)
            return "entity " + std::to_string(i) +
                   " (type, alpha, valid, color, low, high, number of line vertices, those, faces): " +
                   *difference;
    }
    return std::nullopt;
}

std::optional<std::string> SwitchDifference(const KARVOpenGLControl& control, const ModelControl& model)
{
    for (const auto& [type, disabled] : control.disabledTypes) {
        const auto found = model.disabled_types.find(static_cast<std::int32_t>(type));
        if (found == model.disabled_types.end() || found->second != disabled)
            return "the switch of category " + std::to_string(static_cast<std::int32_t>(type)) + " is " +
                   (disabled ? "off" : "on");
    }
    return std::nullopt;
}

struct KnownArguments {
    std::string_view name;
    std::size_t first;
    std::size_t count;
};

/// The calls with pointer arguments, and the range of their other arguments.
constexpr std::array<KnownArguments, 12> kWithPointers = {{{"gluProject", 0, 3},
                                                           {"glGetDoublev", 0, 1},
                                                           {"glGetIntegerv", 0, 1},
                                                           {"gluTessCallback", 1, 1},
                                                           {"gluTessVertex", 1, 3},
                                                           {"gluTessBeginPolygon", 0, 0},
                                                           {"gluTessBeginContour", 0, 0},
                                                           {"gluTessEndContour", 0, 0},
                                                           {"gluTessEndPolygon", 0, 0},
                                                           {"gluDeleteTess", 0, 0},
                                                           {"gluErrorString", 0, 0},
                                                           {"glCallList", 0, 1}}};

std::vector<double> WithoutPointers(const karv_test::GlCall& call)
{
    for (const KnownArguments& known : kWithPointers) {
        if (known.name == call.name) {
            const auto first = call.values.begin() + static_cast<std::ptrdiff_t>(known.first);
            return {first, first + static_cast<std::ptrdiff_t>(known.count)};
        }
    }
    return call.values;
}

/// The module's own calls, without those that the tessellator makes when a polygon ends.
std::vector<const karv_test::GlCall*> OwnCalls(const std::vector<karv_test::GlCall>& calls)
{
    std::vector<const karv_test::GlCall*> own;
    bool in_tessellator = false;
    for (const karv_test::GlCall& call : calls) {
        in_tessellator = (in_tessellator || call.name == "gluTessEndPolygon") && call.name != "glEndList";
        if (!in_tessellator || call.name == "gluTessEndPolygon")
            own.push_back(&call);
    }
    return own;
}

std::string CallText(std::string_view name, const std::vector<double>& values)
{
    std::string text = std::string(name) + "(";
    for (const double value : values)
        text += (text.back() == '(' ? "" : ", ") + Exact(value);
    return text + ")";
}

bool IsSameRow(const std::vector<double>& left, const std::vector<double>& right)
{
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), IsSame);
}

std::string Joined(const std::vector<std::string>& lines)
{
    std::string text;
    for (const std::string& line : lines)
        text += "\n    " + line;
    return text;
}

std::vector<std::string> Numbers(const std::vector<unsigned>& values)
{
    std::vector<std::string> numbers;
    for (const unsigned value : values)
        numbers.push_back(std::to_string(value));
    return numbers;
}

} // namespace

bool IsSame(double left, double right)
{
    if (std::isnan(left) || std::isnan(right))
        return std::isnan(left) && std::isnan(right);
    return left == right && std::signbit(left) == std::signbit(right);
}

std::optional<std::string> StateDifference(const KARVOpenGLControl& control, const ModelControl& model)
{
    if (auto difference = FieldDifference(ControlFields(control), ControlValues(model)))
        return difference;
    if (auto difference = FieldDifference(CameraFields(control.camera), CameraValues(model.camera)))
        return difference;
    if (auto difference = EntityDifference(control, model))
        return difference;
    return SwitchDifference(control, model);
}

std::optional<std::string> GlDifference(const std::vector<karv_test::GlCall>& calls, const GlStream& expected)
{
    const std::vector<const karv_test::GlCall*> own = OwnCalls(calls);
    for (std::size_t i = 0; i < std::max(own.size(), expected.size()); ++i) {
        const std::vector<double> values = i < own.size() ? WithoutPointers(*own[i]) : std::vector<double>();
        if (i < own.size() && i < expected.size() && own[i]->name == expected[i].name &&
            IsSameRow(values, expected[i].values))
            continue;
        return "GL call " + std::to_string(i) + " is " +
               (i < own.size() ? CallText(own[i]->name, values) : "missing") + ", expected " +
               (i < expected.size() ? CallText(expected[i].name, expected[i].values) : "none");
    }
    return std::nullopt;
}

std::optional<std::string> WindowDifference(const karv_test::WindowCalls& calls, const ModelControl& model)
{
    std::vector<std::string> heard = calls.Listing();
    // The framework's default painting gets and releases a device context of its own.
    std::erase_if(heard, [](const std::string& call) {
        return call.starts_with("GetDC") || call.starts_with("ReleaseDC");
    });
    if (heard != model.window_calls)
        return "window calls are" + Joined(heard) + "\n  expected" + Joined(model.window_calls);
    constexpr unsigned kHandled[] = {WM_SIZE, WM_CREATE, WM_TIMER, WM_MOUSEMOVE, WM_MOUSEWHEEL, WM_PAINT};
    std::vector<unsigned> defaulted;
    for (const UINT message : calls.DefaultedMessages())
        if (std::find(std::begin(kHandled), std::end(kHandled), message) != std::end(kHandled))
            defaulted.push_back(message);
    if (defaulted != model.defaulted_messages)
        return "messages left to the default handling are" + Joined(Numbers(defaulted)) + "\n  expected" +
               Joined(Numbers(model.defaulted_messages));
    return std::nullopt;
}

std::optional<std::string> ResultDifference(const Results& results, const Results& expected)
{
    for (std::size_t i = 0; i < std::min(results.size(), expected.size()); ++i)
        if (!IsSame(results[i], expected[i]))
            return Differs("value " + std::to_string(i), results[i], expected[i]);
    if (results.size() != expected.size())
        return Differs("the number of values", static_cast<double>(results.size()),
                       static_cast<double>(expected.size()));
    return std::nullopt;
}

} // namespace karv_model
