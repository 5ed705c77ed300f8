// The module's entry points and process notifications, compiled into this program so that it can call those
// that the module does not export.
#include "module/extension_module.h"
#include "platform/host/rx/dynamic_linker.h"
#include "platform/host/rx/entry_points.h"
#include "tests/support/allocation_count.h"
#include "tests/support/extension_chain.h"
#include "tests/support/host_registry.h"
#include "tests/support/trace_recording.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

using host::Answer;
using host::Message;
using karv::ExtensionModule;
using karv_test::Chain;
using karv_test::ScopedDynamicLinker;
using testing::ElementsAre;
using testing::IsEmpty;

extern "C" Answer acrxEntryPoint(Message message, void* application);
extern "C" int acrxGetApiVersion();
extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved);

namespace
{

struct Registration {
    std::string name;
    void* application;

    bool operator==(const Registration&) const = default;
};

/// A linker that records registrations and can refuse them or replace itself.
class RecordingLinker : public AcRxDynamicLinker
{
  public:
    bool allowUnload(void* application) override
    {
        registrations.push_back({"allowUnload", application});
        return Next();
    }
    bool allowManyDocuments(void* application) override
    {
        registrations.push_back({"allowManyDocuments", application});
        return Next();
    }

    std::vector<Registration> registrations;
    bool answer = true;
    AcRxObject* successor = nullptr;

  private:
    [[nodiscard]] bool Next() const
    {
        if (successor != nullptr)
            acrxSysRegistry()->put(kDynamicLinkerKey, successor);
        return answer;
    }
};

/// A host linker with its own run-time class.
class DerivedLinker : public RecordingLinker
{
  public:
    [[nodiscard]] AcRxClass* isA() const override
    {
        static AcRxClass description(L"DerivedLinker", AcRxDynamicLinker::desc());
        return &description;
    }
};

class EntryPoint : public testing::Test
{
  protected:
    /// An application handle; it is never dereferenced.
    void* application_ = reinterpret_cast<void*>(std::uintptr_t{0x1234});
    RecordingLinker linker_;
    ScopedDynamicLinker registered_{&linker_};
};

TEST_F(EntryPoint, InitialisationMakesTwoRegistrationsWithTheHandleAlone)
{
    EXPECT_EQ(acrxEntryPoint(static_cast<Message>(1), application_), static_cast<Answer>(0));
    EXPECT_THAT(linker_.registrations, ElementsAre(Registration{"allowUnload", application_},
                                                   Registration{"allowManyDocuments", application_}));
}

TEST_F(EntryPoint, LinkerIsLookedUpAgainForTheSecondRegistration)
{
    RecordingLinker second;
    linker_.successor = &second;
    EXPECT_EQ(acrxEntryPoint(Message::Initialise, application_), Answer::Ok);
    EXPECT_THAT(linker_.registrations, ElementsAre(Registration{"allowUnload", application_}));
    EXPECT_THAT(second.registrations, ElementsAre(Registration{"allowManyDocuments", application_}));
}

TEST_F(EntryPoint, LinkerOfADerivedClassServesToo)
{
    DerivedLinker derived;
    const ScopedDynamicLinker registered(&derived);
    acrxEntryPoint(Message::Initialise, application_);
    EXPECT_THAT(derived.registrations, testing::SizeIs(2));
}

TEST_F(EntryPoint, RefusedRegistrationsAreIgnored)
{
    linker_.answer = false;
    EXPECT_EQ(acrxEntryPoint(Message::Initialise, application_), Answer::Ok);
    EXPECT_THAT(linker_.registrations, testing::SizeIs(2));
}

TEST_F(EntryPoint, NullHandleIsPassedOn)
{
    EXPECT_EQ(acrxEntryPoint(Message::Initialise, nullptr), Answer::Ok);
    EXPECT_THAT(linker_.registrations, ElementsAre(Registration{"allowUnload", nullptr},
                                                   Registration{"allowManyDocuments", nullptr}));
}

TEST_F(EntryPoint, EveryOtherMessageDoesNothing)
{
    // A message that looked up the linker would call through a null pointer.
    const ScopedDynamicLinker none(nullptr);
    std::vector<std::int32_t> messages = {-1, std::numeric_limits<std::int32_t>::min(),
                                          std::numeric_limits<std::int32_t>::max(), 0x10001};
    for (std::int32_t message = 0; message < 100; ++message)
        if (message != 1)
            messages.push_back(message);
    for (const std::int32_t message : messages)
        EXPECT_EQ(acrxEntryPoint(static_cast<Message>(message), application_), Answer::Ok) << message;
}

TEST_F(EntryPoint, OtherMessagesLeaveAPresentLinkerAlone)
{
    for (const std::int32_t message : {-1, 0, 2, 3, 4})
        acrxEntryPoint(static_cast<Message>(message), application_);
    EXPECT_THAT(linker_.registrations, IsEmpty());
}

TEST_F(EntryPoint, InitialisationTwiceRegistersTwice)
{
    acrxEntryPoint(Message::Initialise, application_);
    acrxEntryPoint(Message::Initialise, application_);
    EXPECT_THAT(linker_.registrations, testing::SizeIs(4));
}

TEST_F(EntryPoint, RunsOutsideTheWrapper)
{
    const karv_test::TraceRecording trace;
    acrxEntryPoint(Message::Initialise, application_);
    acrxEntryPoint(Message::Unload, application_);
    EXPECT_THAT(trace.Listing(), IsEmpty());
}

TEST(ApiVersion, IsThatOfRelease17)
{
    // 17 in the upper 16 bits: 17 * 65536.
    EXPECT_EQ(acrxGetApiVersion(), 1114112);
}

constexpr DWORD kDetach = 0;
constexpr DWORD kAttach = 1;
constexpr DWORD kThreadAttach = 2;
constexpr DWORD kThreadDetach = 3;

HINSTANCE Instance(std::uintptr_t number)
{
    return reinterpret_cast<HINSTANCE>(number);
}

class ModuleNotifications : public testing::Test
{
  protected:
    void SetUp() override
    {
        EXPECT_THAT(Chain(), IsEmpty());
        EXPECT_EQ(Record().attached, 0);
        // The record keeps what an earlier attachment found, after its end too.
        Record().default_resources = nullptr;
        Record().module_resources = nullptr;
    }
    void TearDown() override
    {
        DllMain(own_, kDetach, nullptr);
        karv::module_instance = nullptr;
        AfxSetResourceHandle(nullptr);
    }
    [[nodiscard]] static ExtensionModule& Record() { return karv::extension_module; }

    const HINSTANCE own_ = Instance(0x10000);
};

TEST(ExtensionModuleRecord, NewOneIsZero)
{
    const ExtensionModule record;
    EXPECT_EQ(record.attached, 0);
    EXPECT_EQ(record.default_resources, nullptr);
    EXPECT_EQ(record.module_resources, nullptr);
    EXPECT_EQ(record.state.bInitialized, FALSE);
    EXPECT_EQ(record.state.hModule, nullptr);
    EXPECT_EQ(record.state.hResource, nullptr);
    static_assert(sizeof record.attached == 4);
}

TEST_F(ModuleNotifications, AttachJoinsTheChainOnce)
{
    EXPECT_EQ(DllMain(own_, kAttach, nullptr), TRUE);
    EXPECT_EQ(karv::module_instance, own_);
    EXPECT_EQ(Record().attached, 1);
    EXPECT_EQ(Record().module_resources, own_);
    EXPECT_EQ(Record().state.hModule, own_);
    EXPECT_THAT(Chain(), ElementsAre(own_));
    EXPECT_EQ(AfxGetModuleState()->m_pFirstDLL->m_bSystem, FALSE);
    EXPECT_EQ(AfxGetModuleState()->m_pFirstDLL->m_hResource, own_);
}

TEST_F(ModuleNotifications, DefaultResourcesAreThoseCurrentAtTheAttachment)
{
    AfxSetResourceHandle(Instance(0x77000));
    DllMain(own_, kAttach, nullptr);
    AfxSetResourceHandle(Instance(0x88000));
    EXPECT_EQ(Record().default_resources, Instance(0x77000));
    DllMain(own_, kAttach, nullptr);
    EXPECT_EQ(Record().default_resources, Instance(0x77000)) << "attached already";
}

TEST_F(ModuleNotifications, AttachLeavesTheDefaultResourcesAsTheyAre)
{
    AfxSetResourceHandle(Instance(0x77000));
    DllMain(own_, kAttach, nullptr);
    EXPECT_EQ(AfxGetResourceHandle(), Instance(0x77000));
}

TEST_F(ModuleNotifications, SecondAttachKeepsOneRecordAndNotesTheHandle)
{
    DllMain(own_, kAttach, nullptr);
    EXPECT_EQ(DllMain(Instance(0x20000), kAttach, nullptr), TRUE);
    EXPECT_THAT(Chain(), ElementsAre(own_));
    EXPECT_EQ(Record().module_resources, own_);
    EXPECT_EQ(karv::module_instance, Instance(0x20000));
}

TEST_F(ModuleNotifications, RefusalOfTheFrameworkIsAnsweredWithSuccess)
{
    // The framework refuses a module without a handle.
    AFX_EXTENSION_MODULE state;
    ASSERT_EQ(AfxInitExtensionModule(state, nullptr), FALSE);

    EXPECT_EQ(DllMain(nullptr, kAttach, nullptr), TRUE);
    EXPECT_EQ(Record().attached, 0);
    EXPECT_EQ(Record().default_resources, nullptr);
    EXPECT_THAT(Chain(), IsEmpty());
    EXPECT_EQ(DllMain(nullptr, kDetach, nullptr), TRUE);
}

TEST_F(ModuleNotifications, AttachWithoutMemoryForTheChainIsAnsweredWithSuccess)
{
    BOOL answer = FALSE;
    {
        const karv_test::AllocationRefusal refusal(1);
        answer = DllMain(own_, kAttach, nullptr);
    }
    EXPECT_EQ(answer, TRUE);
    EXPECT_EQ(Record().attached, 1);
    EXPECT_THAT(Chain(), IsEmpty());
    EXPECT_EQ(DllMain(own_, kDetach, nullptr), TRUE);
    EXPECT_EQ(Record().attached, 0);
}

TEST_F(ModuleNotifications, AttachAfterARefusalAttaches)
{
    DllMain(nullptr, kAttach, nullptr);
    DllMain(own_, kAttach, nullptr);
    EXPECT_EQ(Record().attached, 1);
    EXPECT_THAT(Chain(), ElementsAre(own_));
}

TEST_F(ModuleNotifications, DetachLeavesTheChainAndClearsTheFlag)
{
    DllMain(own_, kAttach, nullptr);
    EXPECT_EQ(DllMain(own_, kDetach, nullptr), TRUE);
    EXPECT_EQ(Record().attached, 0);
    EXPECT_EQ(Record().state.bInitialized, FALSE);
    EXPECT_THAT(Chain(), IsEmpty());
}

TEST_F(ModuleNotifications, DetachTakesOnlyTheModulesOwnPlace)
{
    AFX_EXTENSION_MODULE other;
    AfxInitExtensionModule(other, Instance(0x30000));
    const auto record = std::make_unique<CDynLinkLibrary>(other);
    DllMain(own_, kAttach, nullptr);
    DllMain(own_, kDetach, nullptr);
    EXPECT_THAT(Chain(), ElementsAre(Instance(0x30000)));
}

TEST_F(ModuleNotifications, DetachWithoutAttachDoesNothing)
{
    EXPECT_EQ(DllMain(own_, kDetach, nullptr), TRUE);
    EXPECT_EQ(Record().attached, 0);
    EXPECT_EQ(karv::module_instance, nullptr);
}

TEST_F(ModuleNotifications, DetachTwiceTerminatesOnce)
{
    DllMain(own_, kAttach, nullptr);
    DllMain(own_, kDetach, nullptr);
    // A second termination would end this state, because it has the same address.
    AfxInitExtensionModule(Record().state, own_);
    DllMain(own_, kDetach, nullptr);
    EXPECT_EQ(Record().state.bInitialized, TRUE);
    AfxTermExtensionModule(Record().state);
}

TEST_F(ModuleNotifications, ThreadsChangeNothing)
{
    for (const DWORD reason : {kThreadAttach, kThreadDetach}) {
        EXPECT_EQ(DllMain(own_, reason, nullptr), TRUE);
        EXPECT_EQ(karv::module_instance, nullptr) << reason;
        EXPECT_EQ(Record().attached, 0) << reason;
    }
    DllMain(own_, kAttach, nullptr);
    for (const DWORD reason : {kThreadAttach, kThreadDetach}) {
        EXPECT_EQ(DllMain(Instance(0x20000), reason, nullptr), TRUE);
        EXPECT_EQ(karv::module_instance, own_) << reason;
        EXPECT_EQ(Record().attached, 1) << reason;
        EXPECT_THAT(Chain(), ElementsAre(own_)) << reason;
    }
}

TEST_F(ModuleNotifications, UnknownReasonIsAnsweredWithSuccess)
{
    DllMain(own_, kAttach, nullptr);
    EXPECT_EQ(DllMain(own_, 4, nullptr), TRUE);
    EXPECT_EQ(DllMain(own_, std::numeric_limits<DWORD>::max(), nullptr), TRUE);
    EXPECT_EQ(Record().attached, 1);
}

TEST_F(ModuleNotifications, HundredTimesAttachedAndDetached)
{
    for (int i = 0; i < 100; ++i) {
        DllMain(own_, kAttach, nullptr);
        EXPECT_THAT(Chain(), ElementsAre(own_));
        DllMain(own_, kDetach, nullptr);
        EXPECT_THAT(Chain(), IsEmpty());
    }
}

TEST_F(ModuleNotifications, AttachmentIsOutsideTheWrapper)
{
    const karv_test::TraceRecording trace;
    DllMain(own_, kAttach, nullptr);
    DllMain(own_, kDetach, nullptr);
    EXPECT_THAT(trace.Listing(), IsEmpty());
}

TEST(ExtensionModuleRecord, EndOfAnAttachedRecordLeavesTheChain)
{
    {
        ExtensionModule record;
        record.Attach(Instance(0x40000));
        EXPECT_THAT(Chain(), ElementsAre(Instance(0x40000)));
    }
    EXPECT_THAT(Chain(), IsEmpty());
}

TEST(ExtensionModuleRecord, EndOfADetachedRecordTerminatesNothing)
{
    AFX_EXTENSION_MODULE other;
    AfxInitExtensionModule(other, Instance(0x40000));
    const auto library = std::make_unique<CDynLinkLibrary>(other);
    {
        // The same module, so a second termination would remove the entry above.
        ExtensionModule record;
        record.state = other;
    }
    EXPECT_THAT(Chain(), ElementsAre(Instance(0x40000)));
}

} // namespace
