// A library that is no module.
#include "platform/winsys/export.h"

extern "C" KARV_EXPORT int Answer()
{
    return 42;
}
