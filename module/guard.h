// The trace-and-guard wrapper: every public operation of the module's classes runs inside it, so that a
// call is traced and no exception ever reaches the host.
#pragma once

#include "platform/tools/trace.h"

#include <type_traits>
#include <utility>

namespace karv
{

/// Runs `body` as the operation `name` and returns its result.
///
/// The trace entry opens first and closes last, on a fault too: unwinding closes it before the fault is
/// reported. Any exception, of whatever type, is caught, reported once with `file` and `line`, and answered
/// with the zero of the result type (a zero record where the result is a record). What the body had changed
/// by then stays. `name` and `file` must be literals. The line is that of the call, unless given.
///
/// The default line is the compiler's own builtin, because a source location would put build paths into the
/// binary.
template <typename Body>
std::invoke_result_t<Body&> Guarded(const wchar_t* name, const wchar_t* file, Body&& body,
                                    int line = __builtin_LINE())
{
    using Result = std::invoke_result_t<Body&>;
    try {
        const CTqLogEntry entry(name);
        return body();
    } catch (...) {
        {
            const CTqCrashHandler report(file, line);
        }
        const auto zero = CTqCrashHandler::mov_rax_0();
        if constexpr (std::is_void_v<Result>)
            return static_cast<void>(zero);
        else if constexpr (std::is_arithmetic_v<Result> || std::is_enum_v<Result>)
            return static_cast<Result>(zero);
        else
            return Result{};
    }
}

} // namespace karv
