// The exports and imports of the libraries built for Windows, read from their files.
#include "platform/winsys/winsys.h"
#include "tests/support/boundary_names.h"
#include "tests/support/gl_names.h"
#include "tests/support/image_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <cxxabi.h>

using karv_test::ImageFile;
using karv_test::IsOfTheBoundary;
using testing::Contains;
using testing::Not;

namespace
{

std::string Demangled(const std::string& name)
{
    int status = 0;
    const std::unique_ptr<char, void (*)(void*)> text(
        abi::__cxa_demangle(name.c_str(), nullptr, nullptr, &status), std::free);
    return text != nullptr ? std::string(text.get()) : name;
}

/// The module's exports, demangled.
std::vector<std::string> DemangledExports()
{
    std::vector<std::string> names;
    for (const std::string& name : ImageFile(KARV_MODULE_FILE).Exports())
        names.push_back(Demangled(name));
    return names;
}

bool Exports(const std::string& name)
{
    return std::ranges::any_of(DemangledExports(), [&](const std::string& exported) {
        return exported == name || exported.starts_with(name + "(");
    });
}

/// Whether the library is part of every Windows; its name in lower case.
bool IsOfTheSystem(const std::string& library)
{
    constexpr std::array kLibraries = {"gdi32.dll",  "glu32.dll",    "kernel32.dll",
                                       "msvcrt.dll", "opengl32.dll", "user32.dll"};
    return std::ranges::find(kLibraries, library) != kLibraries.end();
}

/// The version resource of a file, read through the system.
class Version
{
  public:
    explicit Version(const std::string& file)
    {
        const std::wstring name = std::filesystem::path(file).wstring();
        DWORD ignored = 0;
        data_.resize(GetFileVersionInfoSizeW(name.c_str(), &ignored));
        if (data_.empty() ||
            GetFileVersionInfoW(name.c_str(), 0, static_cast<DWORD>(data_.size()), data_.data()) == FALSE)
            data_.clear();
    }

    /// The four numbers, separated by dots; empty if the file has none.
    [[nodiscard]] std::string Numbers()
    {
        VS_FIXEDFILEINFO* info = nullptr;
        UINT size = 0;
        if (data_.empty() ||
            VerQueryValueW(data_.data(), L"\\", reinterpret_cast<void**>(&info), &size) == FALSE)
            return {};
        return std::to_string(HIWORD(info->dwFileVersionMS)) + '.' +
               std::to_string(LOWORD(info->dwFileVersionMS)) + '.' +
               std::to_string(HIWORD(info->dwFileVersionLS)) + '.' +
               std::to_string(LOWORD(info->dwFileVersionLS));
    }

    /// A string of it, in English; empty if there is none.
    [[nodiscard]] std::string Text(const std::wstring& name)
    {
        wchar_t* text = nullptr;
        UINT size = 0;
        const std::wstring path = L"\\StringFileInfo\\040904B0\\" + name;
        if (data_.empty() ||
            VerQueryValueW(data_.data(), path.c_str(), reinterpret_cast<void**>(&text), &size) == FALSE)
            return {};
        return std::filesystem::path(text).string();
    }

  private:
    std::vector<std::byte> data_;
};

TEST(WindowsExports, NothingButTheBoundary)
{
    const std::vector<std::string> names = DemangledExports();
    ASSERT_GT(names.size(), 50U);
    for (const std::string& name : names)
        EXPECT_TRUE(IsOfTheBoundary(name)) << name;
    EXPECT_EQ(ImageFile(KARV_MODULE_FILE).NamelessExports(), 0U);
}

TEST(WindowsExports, EveryBoundaryClassIsThere)
{
    for (const std::string& name : karv_test::BoundarySamples())
        EXPECT_TRUE(Exports(name)) << name;
}

TEST(WindowsExports, EntryPointsForTheHostAreThereUndecorated)
{
    const std::set<std::string> names = ImageFile(KARV_MODULE_FILE).Exports();
    EXPECT_THAT(names, Contains("acrxEntryPoint"));
    EXPECT_THAT(names, Contains("acrxGetApiVersion"));
}

TEST(WindowsExports, ProcessNotificationsAreTheModulesOwn)
{
    EXPECT_FALSE(Exports("DllMain"));
}

TEST(WindowsImports, ModuleNeedsTheSystemAndThePlatformAlone)
{
    const auto libraries = ImageFile(KARV_MODULE_FILE).Imports();
    EXPECT_TRUE(libraries.contains("karv_platform.dll"));
    for (const auto& [library, functions] : libraries)
        EXPECT_TRUE(IsOfTheSystem(library) || library == "karv_platform.dll") << library;
}

TEST(WindowsImports, PlatformNeedsTheSystemAlone)
{
    const auto libraries = ImageFile(KARV_PLATFORM_FILE).Imports();
    ASSERT_TRUE(libraries.contains("kernel32.dll"));
    for (const auto& [library, functions] : libraries)
        EXPECT_TRUE(IsOfTheSystem(library)) << library;
}

TEST(WindowsImports, GlFunctionsAreOfOpenGl11OrGlu)
{
    const std::set<std::string> known = karv_test::NamesOfGl11AndGlu();
    auto libraries = ImageFile(KARV_MODULE_FILE).Imports();
    std::size_t count = 0;
    for (const char* library : {"opengl32.dll", "glu32.dll"}) {
        for (const std::string& name : libraries[library]) {
            // The functions that bind contexts to windows belong to the window system.
            EXPECT_TRUE(known.contains(name) || name.starts_with("wgl")) << name;
            count += known.contains(name) ? 1 : 0;
        }
    }
    EXPECT_GT(count, 30U);
    EXPECT_THAT(libraries["opengl32.dll"], Not(Contains("glDeleteLists")));
}

TEST(WindowsImports, WindowLayerIsTheSystemsOwn)
{
    auto libraries = ImageFile(KARV_MODULE_FILE).Imports();
    EXPECT_THAT(libraries["user32.dll"], Contains("SetTimer"));
    EXPECT_THAT(libraries["gdi32.dll"], Contains("SetPixelFormat"));
    EXPECT_THAT(libraries["opengl32.dll"], Contains("wglCreateContext"));
}

TEST(WindowsVersion, BothLibrariesHaveTheProjectsVersion)
{
    for (const char* file : {KARV_MODULE_FILE, KARV_PLATFORM_FILE}) {
        Version version(file);
        EXPECT_EQ(version.Numbers(), KARV_VERSION ".0") << file;
        EXPECT_EQ(version.Text(L"FileVersion"), KARV_VERSION) << file;
        EXPECT_EQ(version.Text(L"OriginalFilename"), std::filesystem::path(file).filename().string());
    }
}

TEST(WindowsVersion, IsEmptyForAFileWithoutOne)
{
    Version version(KARV_CLIENT_FILE);
    EXPECT_EQ(version.Numbers(), "");
    EXPECT_EQ(version.Text(L"FileVersion"), "");
}

} // namespace
