// The host's graphics-system manager, as far as it tells the background colour of the host's own
// drawing area.
#pragma once

#include "platform/export.h"

#include <cstdint>

class CWnd;

/// A colour in bytes.
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
    /// The surface's background.
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
    /// The host's own drawing area; owned by the manager.
    [[nodiscard]] virtual AcGsDevice* displayDevice() = 0;
};

/// The process's manager; `view` is accepted for a view of the caller's own and may be null. Never null.
[[nodiscard]] KARV_PLATFORM_API AcGsManager* acgsGetGsManager(CWnd* view = nullptr);

/// Sets the background colour that the host's drawing area reports from now on. A new process reports
/// kDefaultHostBackground.
KARV_PLATFORM_API void SetHostBackgroundColor(AcGsColor color) noexcept;

/// The background of a fresh host: a dark neutral grey.
inline constexpr AcGsColor kDefaultHostBackground{58, 62, 68};
