#include "platform/host/rx/system_registry.h"

#include "platform/host/rx/dynamic_linker.h"
#include "platform/host/rx/module_loader.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

TEST(SystemRegistry, EmptyOneHasNothing)
{
    const AcRxSystemRegistry registry;
    EXPECT_EQ(registry.size(), 0U);
    EXPECT_EQ(registry.at(L"Thing"), nullptr);
    EXPECT_EQ(registry.at(L""), nullptr);
}

TEST(SystemRegistry, ObjectIsFoundUnderItsNameAlone)
{
    AcRxSystemRegistry registry;
    AcRxObject one;
    AcRxObject other;
    EXPECT_EQ(registry.put(L"One", &one), nullptr);
    EXPECT_EQ(registry.put(L"Other", &other), nullptr);
    EXPECT_EQ(registry.at(L"One"), &one);
    EXPECT_EQ(registry.at(L"Other"), &other);
    EXPECT_EQ(registry.at(L"one"), nullptr);
    EXPECT_EQ(registry.at(L"On"), nullptr);
    EXPECT_EQ(registry.at(L"One "), nullptr);
}

TEST(SystemRegistry, NameIsACopy)
{
    AcRxSystemRegistry registry;
    AcRxObject object;
    std::wstring name = L"Thing";
    registry.put(name, &object);
    name = L"Other";
    EXPECT_EQ(registry.at(L"Thing"), &object);
}

TEST(SystemRegistry, EmptyNameIsAName)
{
    AcRxSystemRegistry registry;
    AcRxObject object;
    registry.put(L"", &object);
    EXPECT_EQ(registry.at(L""), &object);
}

TEST(SystemRegistry, SecondObjectTakesThePlaceOfTheFirst)
{
    AcRxSystemRegistry registry;
    AcRxObject first;
    AcRxObject second;
    registry.put(L"Thing", &first);
    EXPECT_EQ(registry.put(L"Thing", &second), &first);
    EXPECT_EQ(registry.at(L"Thing"), &second);
    EXPECT_EQ(registry.size(), 1U);
}

TEST(SystemRegistry, NullTakesTheNameOut)
{
    AcRxSystemRegistry registry;
    AcRxObject object;
    registry.put(L"Thing", &object);
    EXPECT_EQ(registry.put(L"Thing", nullptr), &object);
    EXPECT_EQ(registry.at(L"Thing"), nullptr);
    EXPECT_EQ(registry.size(), 0U);
    EXPECT_EQ(registry.put(L"Thing", nullptr), nullptr);
    EXPECT_EQ(registry.size(), 0U);
}

TEST(SystemRegistry, ProcessHasOneRegistry)
{
    ASSERT_NE(acrxSysRegistry(), nullptr);
    EXPECT_EQ(acrxSysRegistry(), acrxSysRegistry());
}

TEST(SystemRegistry, RegistryOfTheProcessHoldsItsDynamicLinker)
{
    AcRxObject* const object = acrxSysRegistry()->at(L"DynamicLinker");
    ASSERT_NE(object, nullptr);
    EXPECT_EQ(object->isA(), AcRxDynamicLinker::desc());
    EXPECT_EQ(AcRxDynamicLinker::cast(object), &host::ProcessModuleLoader());
}

TEST(DynamicLinkerClass, DerivesFromTheRootAndTellsItsName)
{
    EXPECT_STREQ(AcRxDynamicLinker::desc()->name(), L"AcRxDynamicLinker");
    EXPECT_EQ(AcRxDynamicLinker::desc()->myParent(), AcRxObject::desc());
}

TEST(DynamicLinkerClass, ObjectOfAnotherClassIsNoLinker)
{
    AcRxObject object;
    EXPECT_EQ(AcRxDynamicLinker::cast(&object), nullptr);
}

TEST(DynamicLinkerClass, NullIsNoLinker)
{
    EXPECT_EQ(AcRxDynamicLinker::cast(nullptr), nullptr);
}

} // namespace
