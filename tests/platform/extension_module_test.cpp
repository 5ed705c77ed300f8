#include "platform/framework/extension_module.h"
#include "tests/support/extension_chain.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

using karv_test::Chain;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

/// Handles of modules that do not exist: they are compared only.
HINSTANCE Instance(std::uintptr_t number)
{
    return reinterpret_cast<HINSTANCE>(number);
}

/// Adds a module's record to the chain, which owns it.
CDynLinkLibrary* Join(const AFX_EXTENSION_MODULE& state, BOOL system = FALSE)
{
    return std::make_unique<CDynLinkLibrary>(state, system).release();
}

/// A chain of records for one test, removed at its end.
class ExtensionModule : public testing::Test
{
  protected:
    void TearDown() override
    {
        AfxTermExtensionModule(a_, TRUE);
        AfxSetResourceHandle(nullptr);
        EXPECT_THAT(Chain(), IsEmpty());
    }

    AFX_EXTENSION_MODULE a_;
    AFX_EXTENSION_MODULE b_;
    AFX_EXTENSION_MODULE c_;
};

TEST_F(ExtensionModule, FreshStateIsEmpty)
{
    EXPECT_EQ(a_.bInitialized, FALSE);
    EXPECT_EQ(a_.hModule, nullptr);
    EXPECT_EQ(a_.hResource, nullptr);
    EXPECT_THAT(Chain(), IsEmpty());
}

TEST_F(ExtensionModule, InitialisationFillsTheStateAndJoinsNothing)
{
    EXPECT_EQ(AfxInitExtensionModule(a_, Instance(0x1000)), TRUE);
    EXPECT_EQ(a_.bInitialized, TRUE);
    EXPECT_EQ(a_.hModule, Instance(0x1000));
    EXPECT_EQ(a_.hResource, Instance(0x1000));
    EXPECT_THAT(Chain(), IsEmpty());
}

TEST_F(ExtensionModule, SecondInitialisationChangesNothing)
{
    AfxInitExtensionModule(a_, Instance(0x1000));
    EXPECT_EQ(AfxInitExtensionModule(a_, Instance(0x2000)), TRUE);
    EXPECT_EQ(a_.hModule, Instance(0x1000));
}

TEST_F(ExtensionModule, WithoutAnInstanceInitialisationFails)
{
    EXPECT_EQ(AfxInitExtensionModule(a_, nullptr), FALSE);
    EXPECT_EQ(a_.bInitialized, FALSE);
}

TEST_F(ExtensionModule, RecordCarriesItsModule)
{
    AfxInitExtensionModule(a_, Instance(0x1000));
    a_.hResource = Instance(0x3000);
    const CDynLinkLibrary* const library = Join(a_);
    EXPECT_EQ(AfxGetModuleState()->m_pFirstDLL, library);
    EXPECT_EQ(library->m_hModule, Instance(0x1000));
    EXPECT_EQ(library->m_hResource, Instance(0x3000));
    EXPECT_EQ(library->m_bSystem, FALSE);
    EXPECT_EQ(library->m_pNextDLL, nullptr);
}

TEST_F(ExtensionModule, NewestRecordComesFirstAndSystemOnesLast)
{
    AfxInitExtensionModule(a_, Instance(0x1000));
    AfxInitExtensionModule(b_, Instance(0x2000));
    AfxInitExtensionModule(c_, Instance(0x3000));
    Join(c_, TRUE);
    Join(a_);
    Join(b_);
    Join(c_, TRUE);
    EXPECT_THAT(Chain(), ElementsAre(Instance(0x2000), Instance(0x1000), Instance(0x3000), Instance(0x3000)));
    AfxTermExtensionModule(c_);
    EXPECT_THAT(Chain(), ElementsAre(Instance(0x2000), Instance(0x1000)));
}

TEST_F(ExtensionModule, TerminationFreesTheModulesOwnRecordsOnly)
{
    AfxInitExtensionModule(a_, Instance(0x1000));
    AfxInitExtensionModule(b_, Instance(0x2000));
    Join(a_);
    Join(b_);
    Join(a_);
    AfxTermExtensionModule(a_, FALSE);
    EXPECT_THAT(Chain(), ElementsAre(Instance(0x2000)));
    EXPECT_EQ(a_.bInitialized, FALSE);
    EXPECT_EQ(b_.bInitialized, TRUE);
}

TEST_F(ExtensionModule, TerminationFreesRecordsAtTheHeadInTheMiddleAndAtTheEnd)
{
    for (const int own_place : {0, 1, 2}) {
        AfxInitExtensionModule(a_, Instance(0x1000));
        AfxInitExtensionModule(b_, Instance(0x2000));
        for (const int place : {2, 1, 0})
            Join(place == own_place ? a_ : b_);
        AfxTermExtensionModule(a_);
        EXPECT_THAT(Chain(), ElementsAre(Instance(0x2000), Instance(0x2000))) << own_place;
        AfxTermExtensionModule(b_);
    }
}

TEST_F(ExtensionModule, TerminationOfAllFreesEveryRecord)
{
    AfxInitExtensionModule(a_, Instance(0x1000));
    AfxInitExtensionModule(b_, Instance(0x2000));
    Join(a_);
    Join(b_);
    AfxTermExtensionModule(a_, TRUE);
    EXPECT_THAT(Chain(), IsEmpty());
}

TEST_F(ExtensionModule, TerminationTwiceIsTerminationOnce)
{
    AfxInitExtensionModule(a_, Instance(0x1000));
    AfxInitExtensionModule(b_, Instance(0x2000));
    Join(a_);
    Join(b_);
    AfxTermExtensionModule(a_);
    AfxTermExtensionModule(a_);
    EXPECT_THAT(Chain(), ElementsAre(Instance(0x2000)));
}

TEST_F(ExtensionModule, TerminationWithoutInitialisationFreesNothing)
{
    // The record's module is null, like that of the asking state.
    Join(a_);
    AfxTermExtensionModule(b_);
    EXPECT_THAT(Chain(), ElementsAre(HINSTANCE{nullptr}));
}

TEST_F(ExtensionModule, TerminatedStateCanBeInitialisedAnew)
{
    AfxInitExtensionModule(a_, Instance(0x1000));
    AfxTermExtensionModule(a_);
    EXPECT_EQ(AfxInitExtensionModule(a_, Instance(0x2000)), TRUE);
    EXPECT_EQ(a_.hModule, Instance(0x2000));
}

TEST_F(ExtensionModule, DeletedRecordLeavesTheChain)
{
    AfxInitExtensionModule(a_, Instance(0x1000));
    AfxInitExtensionModule(b_, Instance(0x2000));
    auto first = std::make_unique<CDynLinkLibrary>(a_);
    Join(b_);
    first.reset();
    EXPECT_THAT(Chain(), ElementsAre(Instance(0x2000)));
}

TEST_F(ExtensionModule, HundredModulesComeAndGo)
{
    std::vector<AFX_EXTENSION_MODULE> states(100);
    for (std::size_t i = 0; i < states.size(); ++i) {
        AfxInitExtensionModule(states[i], Instance(0x1000 * (i + 1)));
        Join(states[i]);
    }
    EXPECT_EQ(Chain().size(), 100U);
    for (AFX_EXTENSION_MODULE& state : states)
        AfxTermExtensionModule(state);
    EXPECT_THAT(Chain(), IsEmpty());
}

TEST_F(ExtensionModule, ResourcesAreTheProgramsUntilOthersAreSet)
{
    EXPECT_EQ(AfxGetResourceHandle(), GetModuleHandleW(nullptr));
    ASSERT_NE(AfxGetResourceHandle(), nullptr);
    AfxSetResourceHandle(Instance(0x5000));
    EXPECT_EQ(AfxGetResourceHandle(), Instance(0x5000));
    AfxSetResourceHandle(nullptr);
    EXPECT_EQ(AfxGetResourceHandle(), GetModuleHandleW(nullptr));
}

} // namespace
