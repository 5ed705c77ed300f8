// Processor faults inside wrapped operations, answered like exceptions where the host process asks for it: an
// access violation in one of the images named here ends at the innermost guard with one report. Until then,
// and for every other fault, nothing changes. It does not know the module: a guard is whoever runs the
// bodies of its operations by CTqLogEntry::RunWatched.
//
// On 64-bit Windows and x86-64 Linux.
#pragma once

#include "platform/export.h"

/// From now on catches access violations of the image that contains `address` (a function or any other
/// thing of the image; its handle on Windows) and of karv_platform. Calls add up, to at most 8 images; an
/// image counts once.
///
/// A fault is caught only if
/// - an instruction of one of these images made it, by a wrong address for data that is not on the stack,
/// - from there to a guard of the same thread every function under way belongs to these images, the guard's
///   included, and
/// - no function of karv_platform is left that must not throw.
/// The unwinding starts at the call of the function that faulted, or further out, past functions of the other
/// images that the compiler takes for ones that throw nothing. The objects of the functions before that stay
/// undestroyed: what they own is lost, and what they locked stays locked. Those of all others up to the guard
/// are destroyed as for an exception.
///
/// Everything else goes on to whoever else handles faults in the process, or ends it as before: faults in the
/// host's and the system's code, also when called from these images, stack overflow, illegal instructions.
/// On Windows the handler is a vectored one, behind all that stand when it is installed; on Linux it is the
/// action of SIGSEGV and calls the action before it. Debuggers see each fault first.
///
/// The image must stay loaded until `LetProcessorFaultsPass`. Operations already under way keep their old
/// ways. Returns false, and changes nothing, where no image contains the address, the system refuses, or
/// there are too many. Any thread.
KARV_PLATFORM_API bool CatchProcessorFaults(const void* address) noexcept;

/// Catches nothing any more, and takes the handler out again; on Linux only where no other stands before it,
/// else it stays and passes everything on. Without a `CatchProcessorFaults` before it does nothing. Any
/// thread.
KARV_PLATFORM_API void LetProcessorFaultsPass() noexcept;
