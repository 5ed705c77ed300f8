// Processor faults inside guarded operations, handled like exceptions where the host process asks for it:
// an access violation in one of the given images ends at the innermost guard with one report. Without a
// call here, and for every other fault, nothing changes.
//
// The module is not known here: a guard is any function that runs the body of an operation by
// CTqLogEntry::RunWatched and catches everything. On 64-bit Windows and x86-64 Linux.
#pragma once

#include "platform/export.h"

/// Starts catching access violations in the image (program or library) that contains `address` and in
/// karv_platform. `address` is that of a function or a variable; on Windows the image's handle is one too.
/// Further calls add images, up to 8; an image counts once.
///
/// A fault is caught only if
/// - an instruction of one of these images caused it, by a wrong address of data that is not on the stack,
/// - every active function from there to a guard of the same thread belongs to these images, the guard
///   included, and
/// - the unwinding does not have to leave a function of karv_platform that must not throw.
/// Unwinding starts at the call of the faulting function. Where the compiler treats that call as one that
/// cannot throw, and its function is not in karv_platform, unwinding starts further out. Objects of the
/// functions before the start are not destroyed: their memory leaks and their locks stay locked. Objects of
/// all other functions up to the guard are destroyed as for an exception.
///
/// All other faults go to the other handlers of the process, or end it as before: faults in the host's and
/// the system's code, even when these images call it, stack overflow, illegal instructions. On Windows the
/// handler is a vectored one, installed behind the existing ones. On Linux it is the action of SIGSEGV and
/// calls the action before it. Debuggers see each fault first.
///
/// On Linux the handler runs on the thread's alternate signal stack, if the host has given it one. Where that
/// stack is too small for the handler, faults of the thread are not caught. `sysconf(_SC_MINSIGSTKSZ)` plus
/// 4 KiB suffice. A fault of code that runs on the alternate stack is caught only with 64 KiB below it.
///
/// The image must stay loaded until `StopCatchingProcessorFaults`. Operations that are running already are
/// not affected. Returns false, and changes nothing, where no image contains the address, the system
/// refuses, or there are too many images; on Linux the first call also where the calling thread's alternate
/// signal stack is too small. Any thread.
KARV_PLATFORM_API bool CatchProcessorFaults(const void* address) noexcept;

/// Stops catching in all images and removes the handler. On Linux the handler stays where another one was
/// installed after it, and passes every fault on. Does nothing without a `CatchProcessorFaults` before it.
/// Any thread.
KARV_PLATFORM_API void StopCatchingProcessorFaults() noexcept;
