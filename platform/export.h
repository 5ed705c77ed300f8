// Marks what a shared library exports and what its users import.
#pragma once

#ifdef _WIN32
#define KARV_EXPORT __declspec(dllexport)
#define KARV_IMPORT __declspec(dllimport)
#else
#define KARV_EXPORT __attribute__((visibility("default")))
#define KARV_IMPORT __attribute__((visibility("default")))
#endif

/// Marks what karv_platform exports.
#ifdef KARV_PLATFORM_BUILD
#define KARV_PLATFORM_API KARV_EXPORT
#else
#define KARV_PLATFORM_API KARV_IMPORT
#endif
