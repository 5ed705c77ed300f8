// The module loaded by the host in a program that is linked to it and uses it at the same time.
#include "control/KARVOpenGLControl.h"
#include "platform/framework/extension_module.h"
#include "platform/host/rx/module_loader.h"
#include "tests/geometry/shapes.h"
#include "tests/support/extension_chain.h"
#include "tests/support/gl_test_window.h"

#include <gmock/gmock.h>

#include <filesystem>

using host::ModuleLoader;
using karv_test::ChainLength;
using testing::SizeIs;

namespace
{

TEST(LinkedModule, IsInTheChainFromTheStart)
{
    EXPECT_EQ(ChainLength(), 1);
}

TEST(LinkedModule, FindsItsFileByItsName)
{
    EXPECT_TRUE(std::filesystem::equivalent(host::LoadedModuleFile("KARV3DViewport10"), KARV_MODULE_FILE));
}

TEST(LinkedModule, RegistersWithTheProcessLoaderAndCountsLoads)
{
    ModuleLoader& loader = host::ProcessModuleLoader();
    const std::filesystem::path file = host::LoadedModuleFile("KARV3DViewport10");
    void* const application = loader.Load(file);
    EXPECT_EQ(loader.Load(file), application);
    ASSERT_THAT(loader.Modules(), SizeIs(1));
    EXPECT_EQ(loader.Modules().at(0).loads, 2);
    EXPECT_TRUE(loader.Modules().at(0).may_be_unloaded);
    EXPECT_TRUE(loader.Modules().at(0).serves_many_documents);
    EXPECT_EQ(ChainLength(), 1) << "attached at the start already";
    loader.Unload(application);
    loader.Unload(application);
    EXPECT_THAT(loader.Modules(), SizeIs(0));
    EXPECT_EQ(ChainLength(), 1) << "the program still uses it";
}

TEST(LinkedModule, ControlGoesOnAfterTheHostUnloadedTheModule)
{
    karv_test::UseTestWindows();
    ModuleLoader& loader = host::ProcessModuleLoader();
    CWnd window;
    ASSERT_TRUE(window.CreateEx(0, AfxRegisterWndClass(0), L"Client", WS_POPUP | WS_VISIBLE,
                                CRect(0, 0, 64, 64), nullptr, 0));
    KARVOpenGLControl viewport;
    void* const application = loader.Load(host::LoadedModuleFile("KARV3DViewport10"));
    viewport.CreateCtrl(CRect(0, 0, 64, 64), &window, false);
    ASSERT_NE(viewport.m_hWnd, nullptr);
    viewport.AppendGeometry({karv_test::Square()}, KARVGraphicalEntity::EntityType0, karv_test::kRed, 1.0F);
    loader.Unload(application);
    viewport.AppendGeometry({karv_test::Square()}, KARVGraphicalEntity::EntityType0, karv_test::kRed, 1.0F);
    viewport.CameraViewTop();
    viewport.OnDraw(nullptr);
    EXPECT_EQ(viewport.GetFaceNumber(), 2);
}

} // namespace
