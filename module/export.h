// Marks what the module exports and what its clients import.
#pragma once

#include "platform/export.h"

/// Marks the boundary classes of KARV3DViewport10.
#ifdef KARV_MODULE_BUILD
#define KARV_MODULE_API KARV_EXPORT
#else
#define KARV_MODULE_API KARV_IMPORT
#endif
