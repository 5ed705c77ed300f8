// The host's graphics-system manager. Only the background colour of the host's own drawing area is offered.
// For the host's user-interface thread.
#pragma once

#include "platform/export.h"

#include <cstdint>

class CWnd;

/// A colour, 0 to 255 for each channel.
struct AcGsColor {
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;

    bool operator==(const AcGsColor&) const = default;
};

/// A drawing surface of the host.
class KARV_PLATFORM_API AcGsDevice
{
  public:
    AcGsDevice() = default;
    AcGsDevice(const AcGsDevice&) = delete;
    AcGsDevice& operator=(const AcGsDevice&) = delete;
    virtual ~AcGsDevice();
    /// The colour of the surface's background.
    [[nodiscard]] virtual AcGsColor backgroundColor() const = 0;
};

/// The graphics system of the host.
class KARV_PLATFORM_API AcGsManager
{
  public:
    AcGsManager() = default;
    AcGsManager(const AcGsManager&) = delete;
    AcGsManager& operator=(const AcGsManager&) = delete;
    virtual ~AcGsManager();
    /// The host's own drawing area. Owned by the manager, never null.
    [[nodiscard]] virtual AcGsDevice* displayDevice() = 0;
};

/// The process's manager, never null. `view` may be null and is not used: the process has one manager.
[[nodiscard]] KARV_PLATFORM_API AcGsManager* acgsGetGsManager(CWnd* view = nullptr);

/// Sets the background colour that the host's drawing area reports from now on. Before the first call it
/// reports kDefaultHostBackground.
KARV_PLATFORM_API void SetHostBackgroundColor(AcGsColor color) noexcept;

/// The background of a host that has not set one: a dark neutral grey.
inline constexpr AcGsColor kDefaultHostBackground{58, 62, 68};
