// A run of the program within the test's own process, which can inspect the host during the run.
#include "viewer/apps/karv-view/application.h"

#include "platform/host/rx/module_loader.h"
#include "tests/viewer/test_support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ostream>
#include <sstream>
#include <streambuf>

namespace viewer
{
namespace
{

using testing::IsEmpty;
using testing::SizeIs;

/// A stream buffer that records the modules that the host knows whenever something is written.
class ModuleWatch : public std::streambuf
{
  public:
    std::vector<host::LoadedModule> seen;

  protected:
    int_type overflow(int_type character) override
    {
        seen = host::ProcessModuleLoader().Modules();
        return traits_type::not_eof(character);
    }
};

TEST_F(ViewerTest, HostKnowsTheModuleDuringARunAndNotAfterIt)
{
    Options options;
    options.picture = PathOf("p.png");
    options.size = PictureSize{16, 16};
    options.stats = true;
    ModuleWatch watch;
    std::ostream out(&watch);
    std::ostringstream err;
    EXPECT_EQ(viewer::Run(options, std::chrono::steady_clock::now(), out, err), 0) << err.str();
    ASSERT_THAT(watch.seen, SizeIs(1));
    EXPECT_EQ(watch.seen.front().file.filename(), host::LoadedModuleFile("KARV3DViewport10").filename());
    EXPECT_TRUE(watch.seen.front().may_be_unloaded);
    EXPECT_THAT(host::ProcessModuleLoader().Modules(), IsEmpty());
}

} // namespace
} // namespace viewer
