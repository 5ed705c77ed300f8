// A library that is no module.
#include "platform/export.h"

extern "C" KARV_EXPORT int Answer()
{
    return 42;
}
