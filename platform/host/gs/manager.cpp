#include "platform/host/gs/manager.h"

namespace
{

/// The drawing area of the host.
class DisplayDevice final : public AcGsDevice
{
  public:
    [[nodiscard]] AcGsColor backgroundColor() const override { return background; }

    AcGsColor background = kDefaultHostBackground;
};

/// The host's manager, with its only drawing area.
class HostManager final : public AcGsManager
{
  public:
    [[nodiscard]] AcGsDevice* displayDevice() override { return &display; }

    DisplayDevice display;
};

HostManager& TheManager() noexcept
{
    static HostManager manager;
    return manager;
}

} // namespace

AcGsDevice::~AcGsDevice() = default;

AcGsManager::~AcGsManager() = default;

AcGsManager* acgsGetGsManager(CWnd* /*view*/)
{
    return &TheManager();
}

void SetHostBackgroundColor(AcGsColor color) noexcept
{
    TheManager().display.background = color;
}
