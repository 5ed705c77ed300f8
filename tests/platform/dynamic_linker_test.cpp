#include "platform/host/rx/dynamic_linker.h"

#include "tests/platform/dynamic_linker_fixture.h"
#include "tests/platform/temporary_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

using host::Answer;
using host::Message;
using host::ModuleLoader;
using namespace karv_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

namespace
{

using DynamicLinkerFiles = DynamicLinker;
using DynamicLinkerUnload = DynamicLinker;
using ProcessNotifications = DynamicLinker;

TEST_F(DynamicLinker, NewOneHasNothingLoaded)
{
    EXPECT_THAT(loader_.Modules(), IsEmpty());
    EXPECT_EQ(loader_.isA(), AcRxDynamicLinker::desc());
}

TEST_F(DynamicLinker, LoadedModuleGetsTheInitialisationWithItsHandle)
{
    void* const application = LoadGoodPuppet();
    EXPECT_NE(application, nullptr);
    EXPECT_THAT(puppeteer_.messages, ElementsAre(static_cast<Message>(1)));
    EXPECT_THAT(puppeteer_.applications, ElementsAre(application));
    EXPECT_TRUE(IsMapped(NameOf(kPuppet)));
}

TEST_F(DynamicLinker, LoadedModuleIsListedWithItsRegistrations)
{
    void* const application = LoadGoodPuppet();
    ASSERT_THAT(loader_.Modules(), SizeIs(1));
    const host::LoadedModule module = loader_.Modules().front();
    EXPECT_EQ(module.application, application);
    EXPECT_EQ(module.file, std::filesystem::path(FileOf(kPuppet)));
    EXPECT_EQ(module.loads, 1);
    EXPECT_TRUE(module.may_be_unloaded);
    EXPECT_TRUE(module.serves_many_documents);
}

TEST_F(DynamicLinker, ModuleThatRegistersNothingHasNoRegistrations)
{
    loader_.Load(FileOf(kPuppet));
    EXPECT_FALSE(loader_.Modules().at(0).may_be_unloaded);
    EXPECT_FALSE(loader_.Modules().at(0).serves_many_documents);
}

TEST_F(DynamicLinker, ModuleThatRegistersOnceHasThatRegistrationAlone)
{
    puppeteer_.script = [this](Message, void* application) {
        EXPECT_TRUE(loader_.allowManyDocuments(application));
        return Answer::Ok;
    };
    loader_.Load(FileOf(kPuppet));
    EXPECT_FALSE(loader_.Modules().at(0).may_be_unloaded);
    EXPECT_TRUE(loader_.Modules().at(0).serves_many_documents);
}

TEST_F(DynamicLinker, RegistrationsAreThoseOfTheModuleThatMakesThem)
{
    void* const first = loader_.Load(FileOf(kPuppet));
    void* const second = loader_.Load(FileOf("test_module_second_puppet"));
    EXPECT_NE(first, second);
    EXPECT_TRUE(loader_.allowUnload(second));
    EXPECT_TRUE(loader_.allowManyDocuments(first));
    EXPECT_FALSE(loader_.Modules().at(0).may_be_unloaded);
    EXPECT_TRUE(loader_.Modules().at(0).serves_many_documents);
    EXPECT_TRUE(loader_.Modules().at(1).may_be_unloaded);
    EXPECT_FALSE(loader_.Modules().at(1).serves_many_documents);
}

TEST_F(DynamicLinker, RegistrationOfAnUnknownApplicationIsRefused)
{
    int no_application = 0;
    for (void* const application : {static_cast<void*>(nullptr), static_cast<void*>(&no_application)}) {
        EXPECT_FALSE(loader_.allowUnload(application));
        EXPECT_FALSE(loader_.allowManyDocuments(application));
    }
    EXPECT_THAT(loader_.Modules(), IsEmpty());
}

TEST_F(DynamicLinker, SecondLoadIsCountedAndSendsNothing)
{
    void* const application = LoadGoodPuppet();
    EXPECT_EQ(loader_.Load(FileOf(kPuppet)), application);
    EXPECT_THAT(puppeteer_.messages, SizeIs(1));
    ASSERT_THAT(loader_.Modules(), SizeIs(1));
    EXPECT_EQ(loader_.Modules().at(0).loads, 2);
}

TEST_F(DynamicLinker, FileByALongerPathIsTheSameModule)
{
    void* const application = LoadGoodPuppet();
    EXPECT_EQ(loader_.Load(std::filesystem::path(KARV_TEST_MODULES) / "." / NameOf(kPuppet)), application);
    EXPECT_EQ(loader_.Modules().at(0).loads, 2);
}

TEST_F(DynamicLinker, RelativeNameIsThatOfAFileAndNotOfALibraryOnTheSearchPath)
{
    EXPECT_EQ(ErrorOf(KARV_SYSTEM_LIBRARY), KARV_SYSTEM_LIBRARY ": there is no such file");
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(KARV_TEST_MODULES);
    void* const application = loader_.Load(NameOf(kPuppet));
    std::filesystem::current_path(before);
    EXPECT_NE(application, nullptr);
    EXPECT_TRUE(loader_.Modules().at(0).file.is_absolute());
}

TEST_F(DynamicLinker, TwoModulesAreListedInTheOrderOfTheirLoading)
{
    void* const second = LoadGoodPuppet("test_module_second_puppet");
    void* const first = LoadGoodPuppet();
    ASSERT_THAT(loader_.Modules(), SizeIs(2));
    EXPECT_EQ(loader_.Modules().at(0).application, second);
    EXPECT_EQ(loader_.Modules().at(1).application, first);
}

TEST_F(DynamicLinker, ErrorAtTheInitialisationUnloadsTheModule)
{
    puppeteer_.script = [this](Message, void* application) {
        loader_.allowUnload(application);
        return static_cast<Answer>(7);
    };
    EXPECT_EQ(ErrorOfModule(kPuppet), "at its initialisation it answers with the error 7");
    EXPECT_THAT(puppeteer_.messages, ElementsAre(Message::Initialise)) << "no unload message";
    EXPECT_FALSE(loader_.allowUnload(puppeteer_.applications.at(0))) << "its registration is forgotten";
}

TEST_F(DynamicLinker, NegativeAnswerIsAnErrorToo)
{
    puppeteer_.script = [](Message, void*) { return static_cast<Answer>(-1); };
    EXPECT_EQ(ErrorOfModule(kPuppet), "at its initialisation it answers with the error -1");
}

TEST_F(DynamicLinker, FailedLoadLeavesOtherModulesAndLaterLoadsAlone)
{
    LoadGoodPuppet("test_module_second_puppet");
    puppeteer_.script = [](Message, void*) { return Answer::Failed; };
    EXPECT_EQ(ErrorOfModule(kPuppet), "at its initialisation it answers with the error 1");
    EXPECT_NE(LoadGoodPuppet(), nullptr);
    EXPECT_THAT(loader_.Modules(), SizeIs(2));
}

TEST_F(DynamicLinker, ExceptionOfTheModulesOwnTypeEndsBeforeItIsUnloaded)
{
    EXPECT_EQ(ErrorOfModule("test_module_throwing"),
              "at its initialisation it throws an exception: out of ideas");
}

TEST_F(DynamicLinker, ThrownIntIsAnErrorOfTheModule)
{
    puppeteer_.script = [](Message, void*) -> Answer { throw 1; };
    EXPECT_EQ(ErrorOfModule(kPuppet), "at its initialisation it throws an exception");
}

TEST_F(DynamicLinker, ModuleMayLoadAnotherOneAtItsInitialisation)
{
    int depth = 0;
    puppeteer_.script = [&](Message message, void*) {
        if (message == Message::Initialise && depth++ == 0)
            loader_.Load(FileOf("test_module_second_puppet"));
        return Answer::Ok;
    };
    loader_.Load(FileOf(kPuppet));
    EXPECT_THAT(loader_.Modules(), SizeIs(2));
}

TEST_F(DynamicLinker, ModuleCannotLoadItselfAtItsInitialisation)
{
    puppeteer_.script = [this](Message, void*) {
        loader_.Load(FileOf(kPuppet));
        return Answer::Ok;
    };
    EXPECT_THAT(ErrorOfModule(kPuppet), HasSubstr("is being loaded or unloaded"));
}

TEST_F(DynamicLinker, ModuleCannotUnloadItselfAtItsInitialisation)
{
    std::string error;
    puppeteer_.script = [&](Message, void* application) {
        loader_.allowUnload(application);
        error = UnloadError(application);
        return Answer::Ok;
    };
    loader_.Load(FileOf(kPuppet));
    EXPECT_THAT(error, HasSubstr("is being loaded or unloaded"));
    EXPECT_THAT(loader_.Modules(), SizeIs(1));
}

TEST_F(DynamicLinker, TwoLoadersKeepTheirModulesApart)
{
    ModuleLoader other;
    void* const here = LoadGoodPuppet();
    void* const there = other.Load(FileOf(kPuppet));
    EXPECT_NE(here, there);
    EXPECT_THAT(puppeteer_.messages, SizeIs(2));
    EXPECT_FALSE(loader_.allowUnload(there));
    loader_.Unload(here);
    EXPECT_TRUE(IsMapped(NameOf(kPuppet))) << "the other loader uses it";
}

TEST_F(DynamicLinkerFiles, MissingFileIsNamed)
{
    EXPECT_EQ(ErrorOf("/no/such/module.so"), "/no/such/module.so: there is no such file");
}

TEST_F(DynamicLinkerFiles, EmptyNameIsNoFile)
{
    EXPECT_EQ(ErrorOf(""), ": there is no such file");
}

TEST_F(DynamicLinkerFiles, LineBreaksInANameStayOnOneLine)
{
    EXPECT_EQ(ErrorOf("/no/such\r\nmodule.so"), "/no/such  module.so: there is no such file");
}

TEST_F(DynamicLinkerFiles, FolderIsNoFile)
{
    const TemporaryFolder folder;
    EXPECT_EQ(ErrorOf(folder.Path().string()), folder.Path().string() + ": is not a file");
}

TEST_F(DynamicLinkerFiles, EmptyFileIsNoModule)
{
    const TemporaryFolder folder;
    const std::string file = folder.File("empty.so");
    Write(file, "");
    EXPECT_EQ(ErrorOf(file), file + ": is not a module");
}

TEST_F(DynamicLinkerFiles, TextIsNoModule)
{
    const TemporaryFolder folder;
    const std::string file = folder.File("text.so");
    Write(file, std::string(1000, 'x'));
    EXPECT_EQ(ErrorOf(file), file + ": is not a module");
}

TEST_F(DynamicLinkerFiles, LibraryWithoutEitherEntryPointIsNoModule)
{
    EXPECT_EQ(ErrorOfModule("test_module_plain"), "exports no acrxEntryPoint");
}

TEST_F(DynamicLinkerFiles, EntryPointThatIsNotExportedDoesNotCount)
{
    EXPECT_EQ(ErrorOfModule("test_module_no_entry_point"), "exports no acrxEntryPoint");
}

TEST_F(DynamicLinkerFiles, EntryPointsOfANeededLibraryDoNotCount)
{
    EXPECT_EQ(ErrorOfModule("test_module_borrower"), "exports no acrxEntryPoint");
    EXPECT_FALSE(IsMapped(NameOf("KARV3DViewport10"))) << "the needed one goes with it";
}

TEST_F(DynamicLinkerFiles, ModuleWithoutAReleaseIsRefused)
{
    EXPECT_EQ(ErrorOfModule("test_module_no_version"), "exports no acrxGetApiVersion");
}

TEST_F(DynamicLinkerFiles, ModuleOfAnotherReleaseIsRefused)
{
    EXPECT_EQ(ErrorOfModule("test_module_other_release"),
              "was built for release 17.1 of the host, not for 17.0");
}

TEST_F(DynamicLinkerFiles, ModuleThatThrowsWhenAskedForItsReleaseIsRefused)
{
    EXPECT_EQ(ErrorOfModule("test_module_throwing_version"), "throws an exception");
}

TEST_F(DynamicLinkerFiles, RefusedModulesLeaveNoDescriptorOpen)
{
    const std::ptrdiff_t before = karv_test::OpenDescriptors();
    for (int i = 0; i < 100; ++i)
        ErrorOfModule("test_module_other_release");
    EXPECT_EQ(karv_test::OpenDescriptors(), before);
}

TEST_F(DynamicLinkerUnload, UnloadSendsItsMessageAndTakesTheModuleAway)
{
    void* const application = LoadGoodPuppet();
    loader_.Unload(application);
    EXPECT_THAT(puppeteer_.messages, ElementsAre(static_cast<Message>(1), static_cast<Message>(2)));
    EXPECT_THAT(puppeteer_.applications, ElementsAre(application, application));
    EXPECT_THAT(loader_.Modules(), IsEmpty());
    EXPECT_FALSE(IsMapped(NameOf(kPuppet)));
}

TEST_F(DynamicLinkerUnload, ModuleGoesWithTheLastOfItsLoads)
{
    void* const application = LoadGoodPuppet();
    loader_.Load(FileOf(kPuppet));
    loader_.Unload(application);
    EXPECT_THAT(puppeteer_.messages, SizeIs(1)) << "the first unload is not told";
    EXPECT_EQ(loader_.Modules().at(0).loads, 1);
    EXPECT_TRUE(IsMapped(NameOf(kPuppet)));
    loader_.Unload(application);
    EXPECT_THAT(puppeteer_.messages, SizeIs(2));
    EXPECT_FALSE(IsMapped(NameOf(kPuppet)));
}

TEST_F(DynamicLinkerUnload, WhatIsNotLoadedCannotBeUnloaded)
{
    EXPECT_EQ(UnloadError(nullptr), "no module with this handle is loaded");
    void* const application = LoadGoodPuppet();
    loader_.Unload(application);
    EXPECT_EQ(UnloadError(application), "no module with this handle is loaded");
}

TEST_F(DynamicLinkerUnload, HandleOfAnUnloadedModuleIsNotUsedAgain)
{
    void* const first = LoadGoodPuppet();
    loader_.Unload(first);
    void* const second = LoadGoodPuppet();
    EXPECT_NE(first, second);
    EXPECT_FALSE(loader_.allowUnload(first));
    EXPECT_EQ(UnloadError(first), "no module with this handle is loaded");
    EXPECT_THAT(loader_.Modules(), SizeIs(1));
}

TEST_F(DynamicLinkerUnload, ModuleThatHasNotAllowedItStaysAndIsNotAsked)
{
    void* const application = loader_.Load(FileOf(kPuppet));
    EXPECT_EQ(UnloadError(application), FileOf(kPuppet) + ": has not allowed the host to unload it");
    EXPECT_THAT(puppeteer_.messages, SizeIs(1));
    EXPECT_THAT(loader_.Modules(), SizeIs(1));
    loader_.allowUnload(application);
    loader_.Unload(application);
    EXPECT_THAT(loader_.Modules(), IsEmpty());
}

TEST_F(DynamicLinkerUnload, ModuleThatAnswersWithAnErrorStays)
{
    void* const application = LoadGoodPuppet();
    puppeteer_.script = [](Message, void*) { return Answer::Failed; };
    EXPECT_EQ(UnloadError(application),
              FileOf(kPuppet) + ": before it is unloaded it answers with the error 1");
    ASSERT_THAT(loader_.Modules(), SizeIs(1));
    EXPECT_EQ(loader_.Modules().at(0).loads, 1);
    EXPECT_TRUE(IsMapped(NameOf(kPuppet)));
    puppeteer_.script = nullptr;
    loader_.Unload(application);
    EXPECT_THAT(loader_.Modules(), IsEmpty());
}

TEST_F(DynamicLinkerUnload, ModuleThatThrowsStays)
{
    void* const application = LoadGoodPuppet();
    puppeteer_.script = [](Message, void*) -> Answer { throw std::runtime_error("not now"); };
    EXPECT_EQ(UnloadError(application),
              FileOf(kPuppet) + ": before it is unloaded it throws an exception: not now");
    EXPECT_THAT(loader_.Modules(), SizeIs(1));
}

TEST_F(DynamicLinkerUnload, ModuleCannotUnloadItselfWhileItIsUnloaded)
{
    void* const application = LoadGoodPuppet();
    std::string error;
    puppeteer_.script = [&](Message, void* itself) {
        error = UnloadError(itself);
        return Answer::Ok;
    };
    loader_.Unload(application);
    EXPECT_THAT(error, HasSubstr("is being loaded or unloaded"));
    EXPECT_THAT(loader_.Modules(), IsEmpty());
}

TEST_F(DynamicLinkerUnload, EndOfTheLoaderUnloadsEverythingLastOneFirst)
{
    std::vector<void*> loaded;
    {
        ModuleLoader other;
        loaded.push_back(other.Load(FileOf(kPuppet)));
        loaded.push_back(other.Load(FileOf("test_module_second_puppet")));
        other.Load(FileOf(kPuppet));
        puppeteer_.applications.clear();
        puppeteer_.messages.clear();
        puppeteer_.script = [](Message, void*) { return Answer::Failed; };
    }
    EXPECT_THAT(puppeteer_.messages, ElementsAre(Message::Unload, Message::Unload));
    EXPECT_THAT(puppeteer_.applications, ElementsAre(loaded[1], loaded[0]));
    EXPECT_FALSE(IsMapped(NameOf(kPuppet)));
    EXPECT_FALSE(IsMapped(NameOf("test_module_second_puppet")));
}

TEST_F(ProcessNotifications, AttachComesAfterStaticObjectsAndDetachBeforeTheyGo)
{
    void* const application = LoadGoodPuppet();
    EXPECT_THAT(puppeteer_.events, ElementsAre("built", "attach"));
    loader_.Unload(application);
    EXPECT_THAT(puppeteer_.events, ElementsAre("built", "attach", "detach", "destroyed"));
}

TEST_F(ProcessNotifications, BothCarryTheModulesOwnHandle)
{
    void* const application = LoadGoodPuppet();
    LoadGoodPuppet("test_module_second_puppet");
    loader_.Unload(application);
    ASSERT_THAT(puppeteer_.events, ElementsAre("built", "attach", "built", "attach", "detach", "destroyed"));
    EXPECT_NE(puppeteer_.instances[1], nullptr);
    EXPECT_NE(puppeteer_.instances[1], puppeteer_.instances[3]) << "two modules";
    EXPECT_EQ(puppeteer_.instances[1], puppeteer_.instances[4]);
}

TEST_F(ProcessNotifications, HandleIsTheAddressThatTheModuleIsLoadedAt)
{
    LoadGoodPuppet();
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(puppeteer_.instances.at(1)), LoadAddress(NameOf(kPuppet)));
}

TEST_F(ProcessNotifications, SecondLoadIsNotNotified)
{
    LoadGoodPuppet();
    loader_.Load(FileOf(kPuppet));
    EXPECT_THAT(puppeteer_.events, ElementsAre("built", "attach"));
}

TEST_F(ProcessNotifications, RefusedModuleIsDetachedToo)
{
    puppeteer_.script = [](Message, void*) { return Answer::Failed; };
    ErrorOfModule(kPuppet);
    EXPECT_THAT(puppeteer_.events, ElementsAre("built", "attach", "detach", "destroyed"));
}

TEST(LoadedModuleFile, LibraryOfTheProcessIsFoundByItsName)
{
    const std::filesystem::path file = host::LoadedModuleFile("karv_platform");
    EXPECT_TRUE(std::filesystem::equivalent(file, FileOf("karv_platform"))) << file;
}

TEST(LoadedModuleFile, LibraryThatIsNotLoadedIsNotFound)
{
    EXPECT_EQ(host::LoadedModuleFile("test_module_plain"), std::filesystem::path());
    EXPECT_EQ(host::LoadedModuleFile(""), std::filesystem::path());
    EXPECT_FALSE(IsMapped(NameOf("test_module_plain")));
}

} // namespace
