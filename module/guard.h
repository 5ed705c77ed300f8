// The trace-and-guard wrapper: every public operation of the module's classes runs inside it, so that a
// call is traced and no exception ever reaches the host. It knows neither the classes nor where traces and
// reports go: that is the tools library's business.
#pragma once

#include "platform/tools/trace.h"

#include <type_traits>
#include <utility>

namespace karv
{

/// Where fault reports say that an operation stands.
///
/// Reports name one file for a whole class. A class whose source is split counts the lines of its further
/// sources on from a `first_line` of their own, so that every operation still reports a line that no other
/// has.
struct FaultPlace {
    const wchar_t* file; ///< a literal
    int first_line = 0;

    constexpr FaultPlace(const wchar_t* file_in, int first_line_in = 0)
        : file(file_in), first_line(first_line_in)
    {
    }
};

/// Runs the body of a watched operation below the frame by which a processor fault finds its guard. Takes a
/// copy: what the operation keeps in registers may stay there while nobody watches.
template <typename Body>
std::invoke_result_t<Body&> RunWatched(Body body)
{
    using Result = std::invoke_result_t<Body&>;
    if constexpr (std::is_void_v<Result>) {
        CTqLogEntry::RunWatched([](void* own) { (*static_cast<Body*>(own))(); }, &body);
    } else {
        struct Call {
            Body& body;
            Result result{};
        };
        Call call{body};
        CTqLogEntry::RunWatched(
            [](void* own) {
                Call& own_call = *static_cast<Call*>(own);
                own_call.result = own_call.body();
            },
            &call);
        return std::move(call.result);
    }
}

/// Runs `body` as the operation `name` and returns its result.
///
/// The trace entry opens first and closes last, on a fault too: unwinding closes it before the fault is
/// reported. Any exception, of whatever type, is caught, reported once with `place` and `line`, and answered
/// with the zero of the result type (a zero record where the result is a record). What the body had changed
/// by then stays. `name` must be a literal. The line is that of the call, unless given. Any thread; adds no
/// lock.
///
/// The default line is the compiler's own builtin, because a source location would put build paths into the
/// binary.
template <typename Body>
std::invoke_result_t<Body&> Guarded(const wchar_t* name, FaultPlace place, Body&& body,
                                    int line = __builtin_LINE())
{
    using Result = std::invoke_result_t<Body&>;
    try {
        const CTqLogEntry entry(name);
        return entry.IsWatched() ? RunWatched(body) : body();
    } catch (...) {
        {
            const CTqCrashHandler report(place.file, place.first_line + line);
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
