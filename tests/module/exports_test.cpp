// The exports and imports of the built module, read from its file.
#include "tests/geometry/shapes.h"

#include "camera/KARVGLCamera.h"
#include "platform/host/db/entities.h"
#include "tests/support/boundary_names.h"
#include "tests/support/gl_names.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/gl_test_window.h"

#include <gmock/gmock.h>

#include <dlfcn.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

using karv_test::IsOfTheBoundary;
using karv_test::Words;
using testing::Contains;
using testing::IsEmpty;
using testing::Not;

namespace
{

struct Symbol {
    char type = ' ';  ///< the letter that nm gives
    std::string name; ///< demangled, without a version
};

std::string Output(const std::string& command)
{
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string text;
    std::array<char, 4096> part{};
    while (pipe && fgets(part.data(), part.size(), pipe.get()) != nullptr)
        text += part.data();
    return text;
}

/// The dynamic symbols of the module. A line of nm is "address type name", without the address for undefined
/// symbols.
std::vector<Symbol> Symbols(const std::string& option, bool demangle = true)
{
    std::istringstream lines(Output(std::string("'") + KARV_NM + "' -D " + (demangle ? "-C " : "") + option +
                                    " '" + KARV_MODULE_FILE + "'"));
    constexpr std::size_t kAddressWidth = 16;
    std::vector<Symbol> symbols;
    for (std::string line; std::getline(lines, line);) {
        const std::size_t type = line.find_first_not_of(' ', std::min(line.size(), kAddressWidth));
        if (type == std::string::npos || type + 2 > line.size())
            continue;
        const std::string name = line.substr(type + 2);
        symbols.push_back({line[type], name.substr(0, name.find('@'))});
    }
    return symbols;
}

/// The undefined symbols with names like those of OpenGL or GLU.
std::vector<std::string> GlNames()
{
    std::vector<std::string> names;
    for (const Symbol& symbol : Symbols("--undefined-only", false))
        if (symbol.name.size() > 2 && symbol.name.starts_with("gl"))
            names.push_back(symbol.name);
    return names;
}

/// Whether the build adds code of its own to the module: coverage counters or the switch of mutants.
bool IsInstrumented()
{
    const std::string symbols = Output("'" KARV_NM "' -C '" KARV_MODULE_FILE "'");
    return symbols.find("__gcov_") != std::string::npos || symbols.find("karv_mutation") != std::string::npos;
}

bool Exports(const std::string& name)
{
    for (const Symbol& symbol : Symbols("--defined-only"))
        if (symbol.name == name || symbol.name.starts_with(name + "("))
            return true;
    return false;
}

} // namespace

TEST(Exports, NothingButTheBoundary)
{
    const std::vector<Symbol> symbols = Symbols("--defined-only");
    ASSERT_GT(symbols.size(), 50U);
    for (const Symbol& symbol : symbols)
        EXPECT_TRUE(IsOfTheBoundary(symbol.name)) << symbol.type << ' ' << symbol.name;
}

TEST(Exports, NothingOfTheStandardLibrary)
{
    // Its types may be parameters of boundary operations; its functions and objects may not be exported.
    for (const Symbol& symbol : Symbols("--defined-only"))
        EXPECT_EQ(symbol.name.substr(0, symbol.name.find('(')).find("std::"), std::string::npos)
            << symbol.name;
}

TEST(Exports, NoUniqueSymbolPinsTheModule)
{
    for (const Symbol& symbol : Symbols("--defined-only"))
        EXPECT_NE(symbol.type, 'u') << symbol.name;
}

TEST(Exports, EveryBoundaryClassIsThere)
{
    for (const std::string& name : karv_test::BoundarySamples())
        EXPECT_TRUE(Exports(name)) << name;
}

TEST(Exports, EntryPointsForTheHostAreThereUndecorated)
{
    std::vector<std::string> names;
    for (const Symbol& symbol : Symbols("--defined-only", false))
        names.push_back(symbol.name);
    EXPECT_THAT(names, Contains("acrxEntryPoint"));
    EXPECT_THAT(names, Contains("acrxGetApiVersion"));
}

TEST(Exports, ProcessNotificationsAreTheModulesOwn)
{
    EXPECT_FALSE(Exports("DllMain"));
}

TEST(Imports, GlFunctionsAreOfOpenGl11OrGlu)
{
    const std::set<std::string> known = karv_test::NamesOfGl11AndGlu();
    const std::vector<std::string> names = GlNames();
    ASSERT_GT(names.size(), 30U);
    for (const std::string& name : names)
        EXPECT_TRUE(known.contains(name)) << name;
}

TEST(Imports, NothingDeletesADisplayList)
{
    EXPECT_THAT(GlNames(), Not(Contains("glDeleteLists")));
}

TEST(Imports, NeitherFilesNorTheEnvironmentNorThreadsNorLocks)
{
    if (IsInstrumented())
        GTEST_SKIP() << "what counts or switches lines reads files and the environment itself";
    const std::set<std::string> functions = Words(
        "getenv secure_getenv environ fopen fopen64 freopen open open64 openat openat64 creat mkstemp mmap "
        "mmap64 stat stat64 opendir dlopen system popen clone fork");
    const std::set<std::string> families = Words(
        "pthread_ sem_ thrd_ mtx_ cnd_ std::thread std::mutex std::condition_variable std::basic_filebuf "
        "std::basic_ifstream std::basic_ofstream std::basic_fstream std::filesystem::");
    const std::vector<Symbol> symbols = Symbols("--undefined-only");
    ASSERT_GT(symbols.size(), 50U);
    for (const Symbol& symbol : symbols) {
        const auto is_of = [&](const std::string& family) { return symbol.name.starts_with(family); };
        EXPECT_FALSE(functions.contains(symbol.name)) << symbol.name;
        EXPECT_TRUE(std::ranges::none_of(families, is_of)) << symbol.name;
    }
}

TEST(Imports, RecorderCoversEveryGlFunction)
{
    const auto file_of = [](void* address) {
        Dl_info info{};
        return dladdr(address, &info) != 0 ? std::string(info.dli_fname) : std::string();
    };
    const std::string program = file_of(dlsym(RTLD_DEFAULT, "glBegin"));
    EXPECT_THAT(program, testing::HasSubstr("module_tests"));
    for (const std::string& name : GlNames())
        EXPECT_EQ(file_of(dlsym(RTLD_DEFAULT, name.c_str())), program) << name;
}

namespace
{

class ImportedEnums : public karv_test::GlTest
{
};

} // namespace

TEST_F(ImportedEnums, CameraAndGeometryUseNoneBeyondOpenGl11)
{
    const karv_test::GlRecording recording;
    KARVGLCamera camera;
    float factor = 1.0F;
    float fov = 40.0F;
    for (const bool perspective : {false, true}) {
        camera.SetPerspectiveOn(perspective);
        camera.RefreshCameraView(40.0, 10.0, 1.0F);
        camera.ZoomAt(factor, fov);
        camera.SetViewSE();
    }
    AcDbLine line({0.0, 0.0, 0.0}, {1.0, 1.0, 1.0});
    KARVGraphicalEntity lines(&line, KARVGraphicalEntity::EntityType0);
    KARVGraphicalEntity faces({karv_test::Triangle(), karv_test::Square(), karv_test::LShape()},
                              KARVGraphicalEntity::EntityType0, karv_test::kRed);
    for (KARVGraphicalEntity* entity : {&lines, &faces}) {
        entity->DrawObjectQuads();
        entity->DrawObjectLines();
    }
    EXPECT_GT(recording.Calls().size(), 60U);
    EXPECT_THAT(recording.EnumsBeyond11(), IsEmpty());
}
