// A library that exports no entry point of its own and needs a module that does.
#include "platform/host/rx/entry_points.h"
#include "platform/winsys/export.h"

extern "C" KARV_IMPORT int acrxGetApiVersion();

extern "C" KARV_EXPORT int BorrowedApiVersion()
{
    return acrxGetApiVersion();
}
