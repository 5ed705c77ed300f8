// The trace-and-guard wrapper. Every public operation of the module's classes runs inside it, so that each
// call is traced and no exception reaches the host. It knows neither the classes nor the destination of
// traces and reports.
#pragma once

#include "platform/tools/trace.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string_view>
#include <type_traits>
#include <utility>

namespace karv
{

/// A wide string literal that can be a template argument. Its text lives as long as the module.
template <std::size_t Size>
struct FixedText {
    wchar_t text[Size] = {};

    constexpr FixedText(const wchar_t (&literal)[Size]) { std::ranges::copy(literal, text); }
};

/// The class of an operation: the part of its trace name before the two colons. A name without them does not
/// compile.
template <FixedText Name>
consteval auto ClassOf()
{
    // NOTE: with sanitizers, gcc 12 does not accept the standard library's searches in a template argument as
    // constant expressions.
    constexpr std::size_t kLength = [] {
        std::size_t length = 0;
        while (Name.text[length] != L':' || Name.text[length + 1] != L':')
            ++length;
        return length;
    }();
    wchar_t text[kLength + 1] = {};
    std::ranges::copy_n(Name.text, kLength, text);
    return FixedText(text);
}

/// ".\Class.cpp" for a class.
template <FixedText Class>
consteval auto FileOf()
{
    constexpr wchar_t kBefore[] = L".\\";
    constexpr wchar_t kAfter[] = L".cpp";
    wchar_t text[std::size(kBefore) + std::size(Class.text) + std::size(kAfter) - 2] = {};
    wchar_t* end = std::ranges::copy(std::wstring_view(kBefore), text).out;
    end = std::ranges::copy(std::wstring_view(Class.text), end).out;
    std::ranges::copy(std::wstring_view(kAfter), end);
    return FixedText(text);
}

/// The file that fault reports of a class name, whichever of the class's sources the operation is in.
template <FixedText Class>
inline constexpr auto kFaultFile = FileOf<Class>();

/// The number that an operation's fault reports add to its line in the source.
///
/// All reports of a class name one file, but the class has several sources, and their line numbers overlap.
/// The number is computed from the trace name and keeps them apart: a test checks that no two operations of a
/// class report the same line. It is a multiple of 10 000, so the last four digits of a reported line are
/// the line in the source.
constexpr int FirstFaultLine(std::wstring_view name)
{
    constexpr int kLinesPerSource = 10'000;
    constexpr std::uint32_t kNumbers = 200'000; // all lines fit in an int
    std::uint32_t hash = 0;
    for (const wchar_t character : name)
        hash = hash * 31U + static_cast<std::uint32_t>(character);
    return static_cast<int>(hash % kNumbers) * kLinesPerSource;
}

/// Runs the body of a watched operation inside `CTqLogEntry::RunWatched`, where processor faults can be
/// traced back to the guard. Takes the body as a copy, so that its captures can stay in registers while the
/// operation is not watched.
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

/// Runs `body` as the operation `Name`, which reads "Class::Operation", and returns its result.
///
/// The trace entry opens first and closes last. On a fault, unwinding closes it before the fault is reported.
/// Exceptions of every type are caught, reported once and answered with the zero of the result type (a zero
/// record where the result is a record). Changes that the body made before the fault stay. The report names
/// the file of the class and `FirstFaultLine` of the name plus `line`, which is that of the call unless
/// given. Any thread; adds no lock.
///
/// The default line is a builtin because `std::source_location` would put build paths into the binary.
template <FixedText Name, typename Body>
std::invoke_result_t<Body&> Guarded(Body&& body, int line = __builtin_LINE())
{
    using Result = std::invoke_result_t<Body&>;
    try {
        const CTqLogEntry entry(Name.text);
        return entry.IsWatched() ? RunWatched(body) : body();
    } catch (...) {
        {
            constexpr int kFirstLine = FirstFaultLine(Name.text);
            const CTqCrashHandler report(kFaultFile<ClassOf<Name>()>.text, kFirstLine + line);
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
