// Conversion between wide strings and UTF-8. Any thread.
#pragma once

#include "platform/export.h"

#include <string>
#include <string_view>

/// The text in UTF-8. A pair of surrogates becomes one character, where wchar_t has 32 bits too. A lone
/// surrogate and a value above U+10FFFF become U+FFFD, so that the result is always valid.
[[nodiscard]] KARV_PLATFORM_API std::string Utf8FromWide(std::wstring_view text);

/// The wide form of a text in UTF-8; characters above U+FFFF are pairs of surrogates where wchar_t has 16
/// bits. Each byte that is not part of a character becomes one U+FFFD: lone and missing continuations,
/// overlong forms, surrogates, values above U+10FFFF.
[[nodiscard]] KARV_PLATFORM_API std::wstring WideFromUtf8(std::string_view text);
