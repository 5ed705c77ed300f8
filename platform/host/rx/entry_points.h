// The contract between the host and the application modules that it loads: the two functions that every
// module exports under undecorated names, the messages and answers, and the release of the host's
// interface. Loading is described in module_loader.h.
#pragma once

#include <cstdint>

namespace host
{

/// A message of the host to a module. The host may send other values: a module answers `Ok` to those that
/// it does not know.
enum class Message : std::int32_t {
    Initialise = 1, ///< the first message, after the module was loaded
    Unload = 2,     ///< the last message, before the module is unloaded
};

/// A module's answer. Every value but `Ok` is an error.
enum class Answer : std::int32_t {
    Ok = 0,
    Failed = 1,
};

/// The type of the export `acrxEntryPoint`. `application` is the host's handle of the module.
using EntryPoint = Answer (*)(Message message, void* application);
inline constexpr const char* kEntryPointName = "acrxEntryPoint";

/// The type of the export `acrxGetApiVersion`. It returns the release of the host that the module was built
/// for, the major number in the upper 16 bits and the minor number in the lower.
using ApiVersionQuery = int (*)();
inline constexpr const char* kApiVersionQueryName = "acrxGetApiVersion";

/// A release as `acrxGetApiVersion` returns it.
[[nodiscard]] constexpr int ApiVersion(int major, int minor)
{
    return (major << 16) | minor;
}

/// The release of this host, 17.0.
inline constexpr int kApiVersion = ApiVersion(17, 0);

} // namespace host
