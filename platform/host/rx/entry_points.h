// What the host and the application modules that it loads agree on: the two functions that every module
// exports under plain names, the messages and answers between them, and the release of the host's interface.
// Who loads modules, and when, is not said here.
#pragma once

#include <cstdint>

namespace host
{

/// What the host tells a module. It may send others: a module answers `Ok` to those that it does not know.
enum class Message : std::int32_t {
    Initialise = 1, ///< the first one, after the module was loaded
    Unload = 2,     ///< the last one, before the module is unloaded
};

/// A module's answer; everything but `Ok` is an error.
enum class Answer : std::int32_t {
    Ok = 0,
    Failed = 1,
};

/// The export `acrxEntryPoint`. `application` is the handle by which the host knows the module.
using EntryPoint = Answer (*)(Message message, void* application);
inline constexpr const char* kEntryPointName = "acrxEntryPoint";

/// The export `acrxGetApiVersion`: the release that the module was built for, the major number in the upper
/// 16 bits and the minor one in the lower.
using ApiVersionQuery = int (*)();
inline constexpr const char* kApiVersionQueryName = "acrxGetApiVersion";

/// A release as `acrxGetApiVersion` tells it.
[[nodiscard]] constexpr int ApiVersion(int major, int minor)
{
    return (major << 16) | minor;
}

/// The release of this host, 17.0.
inline constexpr int kApiVersion = ApiVersion(17, 0);

} // namespace host
