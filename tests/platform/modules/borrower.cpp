// A library that exports no entry point of its own and needs a module that does.
#include "platform/export.h"
#include "platform/host/rx/entry_points.h"

extern "C" KARV_IMPORT int acrxGetApiVersion();

extern "C" KARV_EXPORT int BorrowedApiVersion()
{
    return acrxGetApiVersion();
}
