#include "platform/framework/window.h"
#include "platform/host/gs/manager.h"

#include <gtest/gtest.h>

namespace
{

/// Restores the host's background after each test.
class GraphicsSystem : public testing::Test
{
  public:
    ~GraphicsSystem() override { SetHostBackgroundColor(kDefaultHostBackground); }
};

TEST_F(GraphicsSystem, FreshHostReportsItsDefaultBackground)
{
    EXPECT_EQ(acgsGetGsManager()->displayDevice()->backgroundColor(), (AcGsColor{58, 62, 68}));
}

TEST_F(GraphicsSystem, BackgroundThatIsSetIsReported)
{
    SetHostBackgroundColor({1, 128, 255});
    EXPECT_EQ(acgsGetGsManager()->displayDevice()->backgroundColor(), (AcGsColor{1, 128, 255}));
}

TEST_F(GraphicsSystem, ManagerIsTheSameWithAndWithoutAView)
{
    CWnd view;
    ASSERT_NE(acgsGetGsManager(), nullptr);
    EXPECT_EQ(acgsGetGsManager(nullptr), acgsGetGsManager());
    EXPECT_EQ(acgsGetGsManager(&view), acgsGetGsManager());
}

TEST_F(GraphicsSystem, DeviceAskedEarlierSeesALaterBackground)
{
    AcGsDevice* const device = acgsGetGsManager()->displayDevice();
    ASSERT_NE(device, nullptr);
    SetHostBackgroundColor({9, 8, 7});
    EXPECT_EQ(device->backgroundColor(), (AcGsColor{9, 8, 7}));
    EXPECT_EQ(device, acgsGetGsManager()->displayDevice());
}

} // namespace
