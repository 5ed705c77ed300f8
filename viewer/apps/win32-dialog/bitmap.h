// The finished frame of the current OpenGL context as a bitmap file.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <vector>

namespace win32_dialog
{

/// A picture as bitmap files hold it, with 24 bits a pixel: bottom row first, blue before red, each row
/// filled up to whole words.
struct Bitmap {
    int width = 0;
    int height = 0;
    std::vector<unsigned char> bytes;
};

/// Reads a frame of this size in pixels from the current context. To be called right after the control's
/// timer message was dispatched. Nothing where the frame does not fill that size yet, as happens after a
/// change of the window's size.
[[nodiscard]] std::optional<Bitmap> ReadFrame(int width, int height);

/// Writes a bitmap file, over one that may be there. Throws viewer::FileError where it cannot be written;
/// what was there before then stays.
void WriteBitmap(const std::filesystem::path& file, const Bitmap& bitmap);

} // namespace win32_dialog
