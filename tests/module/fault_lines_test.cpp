// Fault reports tell the operations of a class apart: every operation reports a line that no other operation
// of its class reports, whichever of the class's sources it is in.
#include "module/guard.h"

#include "camera/KARVGLCamera.h"
#include "control/KARVOpenGLControl.h"
#include "geometry/KARVGraphicalEntity.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/trace_recording.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

using karv_test::ThrowAt;
using karv_test::TraceRecording;
using testing::ElementsAre;

namespace
{

/// A guarded operation, as its source writes it.
struct Operation {
    std::string source; ///< path from the root of the project
    int line = 0;
    std::string class_name;
    std::string name; ///< with the class

    /// What a fault in it is listed as.
    [[nodiscard]] std::string Fault() const
    {
        const std::wstring wide(name.begin(), name.end());
        return ".\\" + class_name + ".cpp:" + std::to_string(karv::FirstFaultLine(wide) + line);
    }
};

std::vector<std::string> Lines(const std::filesystem::path& file)
{
    std::ifstream stream(file);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

bool Calls(const std::string& line)
{
    return line.find("Guarded<") != std::string::npos;
}

std::vector<Operation> OperationsIn(const std::filesystem::path& root, const std::filesystem::path& file)
{
    static const std::regex call(R"re(Guarded<L"((\w+)::~?\w+)">\()re");
    const std::string source = file.lexically_relative(root).string();
    std::vector<Operation> operations;
    int number = 0;
    for (const std::string& line : Lines(file)) {
        ++number;
        std::smatch match;
        if (std::regex_search(line, match, call))
            operations.push_back({source, number, match[2], match[1]});
        else
            EXPECT_FALSE(Calls(line)) << source << ':' << number << ": a call that this test cannot read";
    }
    return operations;
}

/// Those of all sources of the module's classes.
std::vector<Operation> AllOperations()
{
    const std::filesystem::path root = KARV_SOURCE_FOLDER;
    std::vector<Operation> operations;
    for (const char* folder : {"camera", "geometry", "control"})
        for (const auto& entry : std::filesystem::directory_iterator(root / folder))
            std::ranges::move(OperationsIn(root, entry.path()), std::back_inserter(operations));
    return operations;
}

/// The fault that an operation reports, as its place in the sources says.
std::string FaultOf(const std::string& name)
{
    for (const Operation& operation : AllOperations())
        if (operation.name == name)
            return operation.Fault();
    return "no " + name;
}

} // namespace

TEST(FaultLines, NoTwoOperationsOfAClassShareOne)
{
    std::map<std::string, std::string> places; // by what a fault is listed as
    for (const Operation& operation : AllOperations()) {
        const std::string place = operation.source + ":" + std::to_string(operation.line);
        const auto [first, is_new] = places.emplace(operation.Fault(), place);
        EXPECT_TRUE(is_new) << operation.Fault() << " is reported from " << first->second << " and " << place;
    }
}

TEST(FaultLines, SourcesOfEveryClassAreRead)
{
    std::map<std::string, std::set<std::string>> sources; // by class
    for (const Operation& operation : AllOperations())
        sources[operation.class_name].insert(operation.source);
    EXPECT_THAT(sources, ElementsAre(testing::Pair("KARVGLCamera", testing::SizeIs(2)),
                                     testing::Pair("KARVGraphicalEntity", testing::SizeIs(4)),
                                     testing::Pair("KARVOpenGLControl", testing::SizeIs(7))));
}

TEST(FaultLines, CameraReportsTheLineThatItsSourceSays)
{
    KARVGLCamera camera;
    const TraceRecording trace;
    const auto hook = ThrowAt("gluLookAt", 1, 42);
    camera.UpdateCamera();
    EXPECT_THAT(trace.Faults(), ElementsAre(FaultOf("KARVGLCamera::UpdateCamera")));
}

TEST(FaultLines, EntityReportsTheLineThatAFurtherSourceSays)
{
    KARVGraphicalEntity entity;
    const TraceRecording trace;
    const auto hook = ThrowAt("glColor4f", 1, 42);
    entity.DrawObjectQuads();
    EXPECT_THAT(trace.Faults(), ElementsAre(FaultOf("KARVGraphicalEntity::DrawObjectQuads")));
}

TEST(FaultLines, ControlReportsTheLineThatAFurtherSourceSays)
{
    KARVOpenGLControl control;
    const TraceRecording trace;
    const auto hook = ThrowAt("glDisable", 1, 42);
    control.SetLightsOff(true);
    EXPECT_THAT(trace.Faults(), ElementsAre(FaultOf("KARVOpenGLControl::SetLightsOff")));
}
