// Wide strings as UTF-8, for files and programs outside. The other direction is not needed here.
#pragma once

#include "platform/winsys/export.h"

#include <string>
#include <string_view>

/// The text in UTF-8. Pairs of surrogates become one character whatever the width of wchar_t; what is no
/// character (a lone surrogate, a value past U+10FFFF) becomes U+FFFD, so the result is always valid. Any
/// thread.
[[nodiscard]] KARV_PLATFORM_API std::string Utf8FromWide(std::wstring_view text);
