// The module loaded and unloaded by a program that is not linked to it, as a host does.
#include "platform/framework/extension_module.h"
#include "platform/framework/window.h"
#include "platform/host/rx/module_loader.h"
#include "platform/host/rx/system_registry.h"
#include "tests/support/extension_chain.h"
#include "tests/support/gl_test_window.h"
#include "tests/support/process_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <string>

using host::ProcessModuleLoader;
using karv_test::ChainLength;
using karv_test::HeapInUse;
using karv_test::IsMapped;
using karv_test::OpenDescriptors;
using testing::IsEmpty;
using testing::SizeIs;

namespace
{

bool IsModuleMapped()
{
    return IsMapped(KARV_MODULE_FILE);
}

/// The state that a load must restore.
struct Footprint {
    int chain = ChainLength();
    std::size_t names = acrxSysRegistry()->size();
    std::size_t modules = ProcessModuleLoader().Modules().size();
    std::ptrdiff_t descriptors = OpenDescriptors();

    bool operator==(const Footprint&) const = default;
};

/// The heap growth, in bytes, that loads cause without the module's doing.
///
/// NOTE: AddressSanitizer adds an entry of its own to the list of exit handlers for each static object with a
/// destructor and never removes it, so the entry before it is not reused either. Entries have 32 bytes and
/// are allocated in blocks of 32 entries and 16 bytes.
std::size_t GrowthOfTheSanitizer(std::size_t loads)
{
    if (!karv_test::IsHeapSanitized())
        return 0;
    constexpr std::size_t kStaticObjects = 2; ///< of the module: its record, and the object that notifies it
    constexpr std::size_t kEntries = 32;
    constexpr std::size_t kBlock = kEntries * 32 + 16;
    return (loads * kStaticObjects * 2 / kEntries + 1) * kBlock;
}

void LoadAndUnload()
{
    ProcessModuleLoader().Unload(ProcessModuleLoader().Load(KARV_MODULE_FILE));
}

/// Each test begins and ends with the module unloaded.
class ModuleLoad : public testing::Test
{
  protected:
    ~ModuleLoad() override
    {
        EXPECT_FALSE(IsModuleMapped());
        EXPECT_EQ(ChainLength(), 0);
        EXPECT_THAT(ProcessModuleLoader().Modules(), IsEmpty());
    }
};

TEST_F(ModuleLoad, LoadedModuleHasMadeBothRegistrations)
{
    void* const application = ProcessModuleLoader().Load(KARV_MODULE_FILE);
    ASSERT_THAT(ProcessModuleLoader().Modules(), SizeIs(1));
    const host::LoadedModule module = ProcessModuleLoader().Modules().front();
    EXPECT_EQ(module.application, application);
    EXPECT_TRUE(module.may_be_unloaded);
    EXPECT_TRUE(module.serves_many_documents);
    ProcessModuleLoader().Unload(application);
}

TEST_F(ModuleLoad, LoadedModuleIsInTheChainUntilItIsUnloaded)
{
    void* const application = ProcessModuleLoader().Load(KARV_MODULE_FILE);
    EXPECT_TRUE(IsModuleMapped());
    EXPECT_EQ(ChainLength(), 1);
    EXPECT_NE(AfxGetModuleState()->m_pFirstDLL->m_hModule, nullptr);
    ProcessModuleLoader().Unload(application);
    EXPECT_EQ(ChainLength(), 0);
    EXPECT_FALSE(IsModuleMapped());
}

TEST_F(ModuleLoad, TwoLoadsAreOneModuleInTheChain)
{
    void* const application = ProcessModuleLoader().Load(KARV_MODULE_FILE);
    EXPECT_EQ(ProcessModuleLoader().Load(KARV_MODULE_FILE), application);
    EXPECT_EQ(ChainLength(), 1);
    ProcessModuleLoader().Unload(application);
    EXPECT_TRUE(IsModuleMapped());
    EXPECT_EQ(ChainLength(), 1);
    ProcessModuleLoader().Unload(application);
}

TEST_F(ModuleLoad, ModuleIsFoundByItsNameWhileItIsLoaded)
{
    void* const application = ProcessModuleLoader().Load(KARV_MODULE_FILE);
    EXPECT_TRUE(std::filesystem::equivalent(host::LoadedModuleFile("KARV3DViewport10"), KARV_MODULE_FILE));
    ProcessModuleLoader().Unload(application);
    EXPECT_EQ(host::LoadedModuleFile("KARV3DViewport10"), std::filesystem::path());
}

TEST_F(ModuleLoad, ThousandLoadsLeaveNothingBehind)
{
    constexpr std::size_t kLoads = 1000;
    // The first loads fill caches that the system's loader keeps.
    for (int i = 0; i < 10; ++i)
        LoadAndUnload();
    const Footprint before;
    const std::size_t heap_before = HeapInUse();
    for (std::size_t i = 0; i < kLoads; ++i) {
        LoadAndUnload();
        ASSERT_FALSE(IsModuleMapped()) << i;
        ASSERT_EQ(Footprint(), before) << i;
    }
    // Less than one byte per load: the smallest leak would be one block per load.
    EXPECT_LT(HeapInUse(), heap_before + GrowthOfTheSanitizer(kLoads) + kLoads);
}

/// A client module with a viewport. It is linked to the module, which is loaded and unloaded with it.
class ModuleClient : public ModuleLoad
{
  protected:
    ModuleClient() { karv_test::UseTestWindows(); }

    static void Run()
    {
        void* const client = ProcessModuleLoader().Load(KARV_CLIENT_FILE);
        EXPECT_TRUE(IsModuleMapped());
        EXPECT_EQ(ChainLength(), 1);
        ProcessModuleLoader().Unload(client);
        EXPECT_FALSE(IsMapped(KARV_CLIENT_FILE));
        EXPECT_FALSE(IsModuleMapped());
    }
};

TEST_F(ModuleClient, ViewportIsShownAgainAfterTheModuleWasUnloaded)
{
    // Every load uses the same window class, which outlives the module.
    for (int i = 0; i < 5; ++i)
        Run();
}

TEST_F(ModuleClient, MessagesAfterTheModuleWasUnloadedReachNoneOfIt)
{
    Run();
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE)
        DispatchMessageW(&message);
    // The window classes that the module registered remain usable.
    const HBRUSH black = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
    CWnd window;
    EXPECT_TRUE(window.CreateEx(0, AfxRegisterWndClass(CS_HREDRAW | CS_VREDRAW | CS_OWNDC, nullptr, black),
                                L"After", WS_POPUP, CRect(0, 0, 10, 10), nullptr, 0));
    EXPECT_NE(GetDC(window.m_hWnd), nullptr);
    EXPECT_TRUE(window.DestroyWindow());
}

TEST_F(ModuleClient, ModuleThatTheHostLoadedTooStaysWithoutTheClient)
{
    void* const application = ProcessModuleLoader().Load(KARV_MODULE_FILE);
    void* const client = ProcessModuleLoader().Load(KARV_CLIENT_FILE);
    EXPECT_EQ(ChainLength(), 1) << "one module, however many use it";
    ProcessModuleLoader().Unload(client);
    EXPECT_TRUE(IsModuleMapped());
    EXPECT_EQ(ChainLength(), 1);
    ProcessModuleLoader().Unload(application);
}

TEST_F(ModuleClient, ModuleThatAClientUsesStaysWithoutTheHost)
{
    void* const client = ProcessModuleLoader().Load(KARV_CLIENT_FILE);
    void* const application = ProcessModuleLoader().Load(KARV_MODULE_FILE);
    ProcessModuleLoader().Unload(application);
    EXPECT_TRUE(IsModuleMapped());
    EXPECT_EQ(ChainLength(), 1);
    ProcessModuleLoader().Unload(client);
}

} // namespace
