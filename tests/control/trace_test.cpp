// Every operation of the control opens one entry under its name and reports faults under the control's file.
#include "tests/support/control_test.h"

#include <functional>

using namespace karv_test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

namespace
{

/// An operation and its trace name without the class.
struct Operation {
    const char* name;
    std::function<void(KARVOpenGLControl&)> call;
    const char* label = nullptr; ///< distinguishes overloads
};

void PrintTo(const Operation& operation, std::ostream* out)
{
    *out << operation.name;
}

class ControlTrace : public ControlTest, public testing::WithParamInterface<Operation>
{
};

TEST_P(ControlTrace, TheOperationOpensOneEntryUnderItsName)
{
    const auto control = NewControl();
    const TraceRecording trace;
    GetParam().call(*control);
    const std::vector<std::string> outermost = trace.OutermostCalls();
    ASSERT_FALSE(outermost.empty());
    EXPECT_EQ(outermost.front(), std::string("KARVOpenGLControl::") + GetParam().name);
    // Only the destructors of arguments passed by value follow.
    for (std::size_t i = 1; i < outermost.size(); ++i)
        EXPECT_EQ(outermost[i], "KARVGraphicalEntity::~KARVGraphicalEntity");
    EXPECT_THAT(trace.Faults(), IsEmpty());
}

/// References to read the camera into.
struct CameraData {
    AcGePoint3d position;
    AcGePoint3d target;
    AcGeVector3d x;
    AcGeVector3d y;
    AcGeVector3d z;
};

const KARVGraphicalEntity& EmptyEntity()
{
    static const KARVGraphicalEntity entity;
    return entity;
}

std::vector<Operation> Operations()
{
    using Control = KARVOpenGLControl;
    return {
        {"GLInitializeCtrl", [](Control& c) { c.GLInitializeCtrl(); }},
        {"GLInitializeLight", [](Control& c) { c.GLInitializeLight(); }},
        {"GLInitializeMaterials", [](Control& c) { c.GLInitializeMaterials(); }},
        {"OnPaint", [](Control& c) { c.OnPaint(); }},
        {"OnTimer", [](Control& c) { c.OnTimer(1); }},
        {"OnSize", [](Control& c) { c.OnSize(SIZE_RESTORED, 10, 10); }},
        {"OnDraw", [](Control& c) { c.OnDraw(nullptr); }},
        {"ForceRenderStart", [](Control& c) { c.ForceRenderStart(); }},
        {"SetBgColor", [](Control& c) { c.SetBgColor(1, 2, 3); }},
        {"SetRenderMode", [](Control& c) { c.SetRenderMode(KARVGLRenderModeFaces); }},
        {"SetLightsOff", [](Control& c) { c.SetLightsOff(true); }},
        {"SetMetricsFactor", [](Control& c) { c.SetMetricsFactor(2.0); }},
        {"GLDrawFrame", [](Control& c) { c.GLDrawFrame(); }},
        {"DrawDebugCubeAt", [](Control& c) { c.DrawDebugCubeAt({}, 1.0F); }},
        {"AppendGeometry", [](Control& c) { c.AppendGeometry(static_cast<AcDbEntity*>(nullptr), TypeOf(0)); },
         "AppendHostEntity"},
        {"AppendGeometry", [](Control& c) { c.AppendGeometry(EmptyEntity()); }, "AppendEntity"},
        {"AppendGeometry",
         [](Control& c) { c.AppendGeometry(std::vector<KARVGLFace>(), TypeOf(0), 1, 1.0F); }, "AppendFaces"},
        {"AddEntityToCache", [](Control& c) { c.AddEntityToCache(EmptyEntity()); }},
        {"AllocateMemory", [](Control& c) { c.AllocateMemory(1); }},
        {"ClearGeometry", [](Control& c) { c.ClearGeometry(true); }},
        {"EnableObject", [](Control& c) { c.EnableObject(TypeOf(0)); }},
        {"DisableObject", [](Control& c) { c.DisableObject(TypeOf(0)); }},
        {"GetFaceNumber", [](Control& c) { c.GetFaceNumber(); }},
        {"ComputeExtents", [](Control& c) { c.ComputeExtents(true); }},
        {"OverrideExtents", [](Control& c) { c.OverrideExtents({}, {}); }},
        {"GLDetectExtents", [](Control& c) { c.GLDetectExtents(EmptyEntity()); }},
        {"GLComputeCentroid", [](Control& c) { c.GLComputeCentroid(); }},
        {"OnMouseMove", [](Control& c) { c.OnMouseMove(MK_LBUTTON, CPoint(3, 4)); }},
        {"GLMouseRotate", [](Control& c) { c.GLMouseRotate(1, 2); }},
        {"GLMousePan", [](Control& c) { c.GLMousePan(1, 2); }},
        {"GLMouseZoom", [](Control& c) { c.GLMouseZoom(1); }},
        {"RestrictToRotate", [](Control& c) { c.RestrictToRotate(); }},
        {"RestrictToPan", [](Control& c) { c.RestrictToPan(); }},
        {"RestrictToZoom", [](Control& c) { c.RestrictToZoom(); }},
        {"KillUserControl", [](Control& c) { c.KillUserControl(); }},
        {"CameraViewTop", [](Control& c) { c.CameraViewTop(); }},
        {"CameraViewBottom", [](Control& c) { c.CameraViewBottom(); }},
        {"CameraViewFront", [](Control& c) { c.CameraViewFront(); }},
        {"CameraViewBack", [](Control& c) { c.CameraViewBack(); }},
        {"CameraViewLeft", [](Control& c) { c.CameraViewLeft(); }},
        {"CameraViewRight", [](Control& c) { c.CameraViewRight(); }},
        {"CameraViewNE", [](Control& c) { c.CameraViewNE(); }},
        {"CameraViewNW", [](Control& c) { c.CameraViewNW(); }},
        {"CameraViewSE", [](Control& c) { c.CameraViewSE(); }},
        {"CameraViewSW", [](Control& c) { c.CameraViewSW(); }},
        {"SetCamera", [](Control& c) { c.SetCamera({}, {}, {}); }},
        {"SetCameraData", [](Control& c) { c.SetCameraData({}, {}, {}); }},
        {"GetCameraData",
         [](Control& c) {
             CameraData data;
             c.GetCameraData(data.position, data.target, data.z);
         }},
        {"GetCameraAxes",
         [](Control& c) {
             CameraData data;
             c.GetCameraAxes(data.x, data.y, data.z);
         }},
        {"SetToPerspective", [](Control& c) { c.SetToPerspective(false); }},
        {"ResetCameraZoom", [](Control& c) { c.ResetCameraZoom(); }},
    };
}

INSTANTIATE_TEST_SUITE_P(All, ControlTrace, testing::ValuesIn(Operations()), [](const auto& tested) {
    return std::string(tested.param.label != nullptr ? tested.param.label : tested.param.name);
});

/// An operation of the control and an entry point that it calls itself, which is made to fail.
struct FaultyOperation {
    const char* name;
    std::function<void(KARVOpenGLControl&)> call;
    const char* entry_point;
};

void PrintTo(const FaultyOperation& operation, std::ostream* out)
{
    *out << operation.name;
}

class ControlFault : public ControlTest, public testing::WithParamInterface<FaultyOperation>
{
};

TEST_P(ControlFault, IsReportedOnceUnderTheControlsFileAndSwallowed)
{
    const auto control = NewControl();
    const TraceRecording trace;
    GlHook fault = ThrowAt(GetParam().entry_point, 1, 42); // not an std::exception
    GetParam().call(*control);
    EXPECT_THAT(trace.Faults(), ElementsAre(StartsWith(".\\KARVOpenGLControl.cpp:")));
}

TEST_P(ControlFault, IsReportedAfterTheOperationsEntryHasClosed)
{
    const auto control = NewControl();
    const TraceRecording trace;
    GlHook fault = ThrowAt(GetParam().entry_point, 1, 42);
    GetParam().call(*control);
    const std::vector<TraceRecord> records = trace.Records();
    for (std::size_t i = 1; i < records.size(); ++i) {
        if (records[i].kind == TraceRecord::Kind::Fault) {
            EXPECT_EQ(records[i - 1].kind, TraceRecord::Kind::Leave);
            const std::string name = GetParam().name;
            EXPECT_EQ(records[i - 1].name, L"KARVOpenGLControl::" + std::wstring(name.begin(), name.end()));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    All, ControlFault,
    testing::Values(
        FaultyOperation{"SetBgColor", [](KARVOpenGLControl& c) { c.SetBgColor(1, 2, 3); }, "glClearColor"},
        FaultyOperation{"SetLightsOff", [](KARVOpenGLControl& c) { c.SetLightsOff(true); }, "glDisable"},
        FaultyOperation{"OnTimer", [](KARVOpenGLControl& c) { c.OnTimer(1); }, "glClear"},
        FaultyOperation{"GLDrawFrame", [](KARVOpenGLControl& c) { c.GLDrawFrame(); }, "glGetDoublev"},
        FaultyOperation{"OnSize", [](KARVOpenGLControl& c) { c.OnSize(SIZE_RESTORED, 10, 10); },
                        "glViewport"},
        FaultyOperation{"OnDraw", [](KARVOpenGLControl& c) { c.OnDraw(nullptr); }, "glLoadIdentity"},
        FaultyOperation{"DrawDebugCubeAt", [](KARVOpenGLControl& c) { c.DrawDebugCubeAt({}, 1.0F); },
                        "glPushMatrix"},
        FaultyOperation{"GLInitializeLight", [](KARVOpenGLControl& c) { c.GLInitializeLight(); },
                        "glLightfv"},
        FaultyOperation{"GLInitializeMaterials", [](KARVOpenGLControl& c) { c.GLInitializeMaterials(); },
                        "glMaterialfv"}),
    [](const auto& tested) { return std::string(tested.param.name); });

using ControlFaultLines = ControlTest;

TEST_F(ControlFaultLines, EachOperationReportsItsOwnLine)
{
    const auto control = NewControl();
    const TraceRecording trace;
    {
        const GlHook fault = ThrowAt("glClearColor", 1, 42);
        control->SetBgColor(1, 2, 3);
    }
    {
        const GlHook fault = ThrowAt("glDisable", 1, 42);
        control->SetLightsOff(true);
    }
    ASSERT_EQ(trace.Faults().size(), 2U);
    EXPECT_NE(trace.Faults()[0], trace.Faults()[1]);
}

TEST_F(ControlFaultLines, StateWrittenBeforeTheFaultStays)
{
    const auto control = NewControl();
    const GlHook fault = ThrowAt("glClearColor", 1, 42);
    control->SetBgColor(255, 0, 0);
    EXPECT_THAT(control->backgroundColor, ElementsAre(1.0F, 0.0F, 0.0F));
}

} // namespace
