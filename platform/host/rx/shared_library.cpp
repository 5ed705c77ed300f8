#include "platform/host/rx/shared_library.h"

#include <utility>

namespace host
{

SharedLibrary::SharedLibrary(SharedLibrary&& other) noexcept : handle_(std::exchange(other.handle_, nullptr))
{
}

} // namespace host
