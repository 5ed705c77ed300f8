// Wide strings as UTF-8 and back, for files and programs outside.
#pragma once

#include "platform/export.h"

#include <string>
#include <string_view>

/// The text in UTF-8. Pairs of surrogates become one character whatever the width of wchar_t; what is no
/// character (a lone surrogate, a value past U+10FFFF) becomes U+FFFD, so the result is always valid. Any
/// thread.
[[nodiscard]] KARV_PLATFORM_API std::string Utf8FromWide(std::wstring_view text);

/// The wide form of a text in UTF-8, in pairs of surrogates where wchar_t has 16 bits. Each byte that is no
/// part of a character (a lone or missing continuation, a longer form than needed, a surrogate, a value past
/// U+10FFFF) becomes one U+FFFD. Any thread.
[[nodiscard]] KARV_PLATFORM_API std::wstring WideFromUtf8(std::string_view text);
