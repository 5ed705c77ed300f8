// The control's settings and switches, redraws and frames that a client asks for, and its private steps
// called alone.
#include "tests/control/model/operations.h"

namespace karv_model
{
namespace
{

Operation DrawOnDraw(Random&)
{
    return MakeOperation(
        "OnDraw(null)", [](Bench& bench) { bench.control.OnDraw(nullptr); },
        [](ModelControl& model) { model.OnDraw(); });
}

Operation DrawForceRenderStart(Random&)
{
    return MakeOperation(
        "ForceRenderStart()",
        [](Bench& bench) {
            if (bench.control.m_hWnd != nullptr)
                bench.control.ForceRenderStart();
        },
        [](ModelControl& model) {
            if (model.has_window)
                model.ForceRenderStart();
        });
}

Operation DrawSetBgColor(Random& random)
{
    const int r = random.Integer();
    const int g = random.Integer();
    const int b = random.Integer();
    return MakeOperation(
        CallText("SetBgColor", {static_cast<double>(r), static_cast<double>(g), static_cast<double>(b)}),
        [=](Bench& bench) { bench.control.SetBgColor(r, g, b); },
        [=](ModelControl& model) { model.SetBgColor(r, g, b); });
}

Operation DrawSetRenderMode(Random& random)
{
    const std::int32_t mode = random.Chance(80) ? random.Between(0, 2) : random.Integer();
    return MakeOperation(
        CallText("SetRenderMode", {static_cast<double>(mode)}),
        [=](Bench& bench) { bench.control.SetRenderMode(static_cast<KARVGLRenderMode>(mode)); },
        [=](ModelControl& model) { model.render_mode = mode; });
}

Operation DrawSetLightsOff(Random& random)
{
    const bool off = random.Chance(50);
    return MakeOperation(
        CallText("SetLightsOff", {off ? 1.0 : 0.0}), [=](Bench& bench) { bench.control.SetLightsOff(off); },
        [=](ModelControl& model) { model.SetLightsOff(off); });
}

Operation DrawSetMetricsFactor(Random& random)
{
    const double factor = random.Number();
    return MakeOperation(
        CallText("SetMetricsFactor", {factor}), [=](Bench& bench) { bench.control.SetMetricsFactor(factor); },
        [=](ModelControl& model) { model.metrics_factor = factor; });
}

Operation DrawDebugCube(Random& random)
{
    const Triple position = Narrowed(random.Point());
    const float size = random.Single();
    return MakeOperation(
        CallText("DrawDebugCubeAt", {position.x, position.y, position.z, size}),
        [=](Bench& bench) {
            KARVGLVertex vertex;
            vertex.x = position.x;
            vertex.y = position.y;
            vertex.z = position.z;
            bench.control.DrawDebugCubeAt(vertex, size);
        },
        [=](ModelControl& model) { model.DrawDebugCubeAt(position, size); });
}

Operation DrawRestriction(Random& random)
{
    struct Choice {
        const char* name;
        void (KARVOpenGLControl::*call)();
        bool to_rotate;
        bool to_pan;
        bool to_zoom;
    };
    constexpr Choice kChoices[] = {
        {"RestrictToRotate()", &KARVOpenGLControl::RestrictToRotate, true, false, false},
        {"RestrictToPan()", &KARVOpenGLControl::RestrictToPan, false, true, false},
        {"RestrictToZoom()", &KARVOpenGLControl::RestrictToZoom, false, false, true}};
    const Choice choice = random.Of(kChoices);
    return MakeOperation(
        choice.name, [=](Bench& bench) { (bench.control.*choice.call)(); },
        [=](ModelControl& model) { model.Restrict(choice.to_rotate, choice.to_pan, choice.to_zoom); });
}

Operation DrawKillUserControl(Random&)
{
    return MakeOperation(
        "KillUserControl()", [](Bench& bench) { bench.control.KillUserControl(); },
        [](ModelControl& model) { model.user_control_enabled = false; });
}

/// Changes settings that no operation reaches, as a build with other defaults would.
Operation DrawOtherDefaults(Random& random)
{
    const bool invert = random.Chance(50);
    const bool restrict_all = random.Chance(50);
    return MakeOperation(
        CallText("other defaults: invertPanX, no restriction",
                 {invert ? 1.0 : 0.0, restrict_all ? 1.0 : 0.0}),
        [=](Bench& bench) {
            bench.control.invertPanX = invert;
            if (restrict_all)
                bench.control.mouseRotates = bench.control.mousePans = bench.control.mouseZooms = false;
        },
        [=](ModelControl& model) {
            model.invert_pan_x = invert;
            if (restrict_all)
                model.Restrict(false, false, false);
        });
}

Operation DrawMouseRotate(Random& random)
{
    const int dx = random.Integer();
    const int dy = random.Integer();
    return MakeOperation(
        CallText("GLMouseRotate", {static_cast<double>(dx), static_cast<double>(dy)}),
        [=](Bench& bench) { bench.control.GLMouseRotate(dx, dy); },
        [=](ModelControl& model) { model.MouseRotate(dx, dy); });
}

Operation DrawMousePan(Random& random)
{
    const int dx = random.Integer();
    const int dy = random.Integer();
    return MakeOperation(
        CallText("GLMousePan", {static_cast<double>(dx), static_cast<double>(dy)}),
        [=](Bench& bench) { bench.control.GLMousePan(dx, dy); },
        [=](ModelControl& model) { model.MousePan(dx, dy); });
}

Operation DrawMouseZoom(Random& random)
{
    const int d = random.Integer();
    return MakeOperation(
        CallText("GLMouseZoom", {static_cast<double>(d)}),
        [=](Bench& bench) { bench.control.GLMouseZoom(d); },
        [=](ModelControl& model) { model.MouseZoom(d); });
}

Operation DrawComputeExtents(Random& random)
{
    const bool compute = random.Chance(50);
    return MakeOperation(
        CallText("ComputeExtents", {compute ? 1.0 : 0.0}),
        [=](Bench& bench) { bench.control.ComputeExtents(compute); },
        [=](ModelControl& model) { model.compute_extents_on_append = compute; });
}

Operation DrawOverrideExtents(Random& random)
{
    // The sums of these exceed the range of floats, half of a sum does not.
    constexpr double kHuge[] = {3.4028234663852886e38, 3e38, -3e38, 1e38};
    const bool is_huge = random.Chance(6);
    const WideTriple low =
        is_huge ? WideTriple{random.Of(kHuge), random.Of(kHuge), random.Of(kHuge)} : random.Point();
    const WideTriple high = is_huge || random.Chance(20) ? low : random.Point();
    return MakeOperation(
        CallText("OverrideExtents", {low.x, low.y, low.z, high.x, high.y, high.z}),
        [=](Bench& bench) { bench.control.OverrideExtents(ToPoint(low), ToPoint(high)); },
        [=](ModelControl& model) { model.OverrideExtents(low, high); });
}

Operation DrawSwitch(Random& random)
{
    const std::int32_t category = random.Category();
    const bool disable = random.Chance(50);
    return MakeOperation(
        CallText(disable ? "DisableObject" : "EnableObject", {static_cast<double>(category)}),
        [=](Bench& bench) {
            const auto type = static_cast<KARVGraphicalEntity::EntityType>(category);
            if (disable)
                bench.control.DisableObject(type);
            else
                bench.control.EnableObject(type);
        },
        [=](ModelControl& model) { model.disabled_types[category] = disable; });
}

Operation DrawGetFaceNumber(Random&)
{
    return MakeOperation(
        "GetFaceNumber()",
        [](Bench& bench) { return Results{static_cast<double>(bench.control.GetFaceNumber())}; },
        [](ModelControl& model) { return Results{static_cast<double>(model.face_count)}; });
}

} // namespace

const std::vector<Kind>& CommandKinds()
{
    static const std::vector<Kind> kinds = {
        {15, DrawOnDraw},       {3, DrawForceRenderStart}, {4, DrawSetBgColor},
        {8, DrawSetRenderMode}, {4, DrawSetLightsOff},     {2, DrawSetMetricsFactor},
        {2, DrawDebugCube},     {8, DrawRestriction},      {1, DrawKillUserControl},
        {3, DrawOtherDefaults}, {6, DrawMouseRotate},      {6, DrawMousePan},
        {6, DrawMouseZoom},     {8, DrawComputeExtents},   {10, DrawOverrideExtents},
        {12, DrawSwitch},       {2, DrawGetFaceNumber}};
    return kinds;
}

} // namespace karv_model
