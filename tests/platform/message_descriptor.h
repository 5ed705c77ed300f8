// The layer's descriptor, as a foreign loop sees it.
#pragma once

#include "platform/winsys/backends.h"

#include <poll.h>

namespace karv_test
{

/// Whether a foreign loop would find the message descriptor readable now.
[[nodiscard]] inline bool IsDescriptorReadable()
{
    pollfd descriptor{winsys::GetMessageDescriptor(), POLLIN, 0};
    return poll(&descriptor, 1, 0) == 1;
}

} // namespace karv_test
