// How the system's loader has to treat the libraries, read from their dynamic sections.
#include <gtest/gtest.h>

#include <cstddef>
#include <memory>

#include <dlfcn.h>
#include <link.h>

namespace
{

struct Closing {
    void operator()(void* library) const { ::dlclose(library); }
};

/// The flags of a library (DF_1_NOW and so on).
std::size_t FlagsOf(const char* file)
{
    const std::unique_ptr<void, Closing> library(::dlopen(file, RTLD_NOW | RTLD_LOCAL));
    link_map* map = nullptr;
    if (library == nullptr || ::dlinfo(library.get(), RTLD_DI_LINKMAP, static_cast<void*>(&map)) != 0)
        return 0;
    for (const ElfW(Dyn)* entry = map->l_ld; entry->d_tag != DT_NULL; ++entry)
        if (entry->d_tag == DT_FLAGS_1)
            return entry->d_un.d_val;
    return 0;
}

TEST(LibraryFlags, FunctionsAreBoundBeforeAHandlerOfFaultsNeedsThem)
{
    EXPECT_NE(FlagsOf(KARV_MODULE_FILE) & DF_1_NOW, 0U);
    EXPECT_NE(FlagsOf(KARV_PLATFORM_FILE) & DF_1_NOW, 0U);
}

TEST(LibraryFlags, PlatformStaysInTheProcessAndTheModuleDoesNot)
{
    EXPECT_NE(FlagsOf(KARV_PLATFORM_FILE) & DF_1_NODELETE, 0U);
    EXPECT_EQ(FlagsOf(KARV_MODULE_FILE) & DF_1_NODELETE, 0U);
}

} // namespace
