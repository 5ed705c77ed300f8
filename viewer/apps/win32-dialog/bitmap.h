// Frames of the current OpenGL context as bitmap files.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <vector>

namespace win32_dialog
{

/// The pixels of a bitmap file with 24 bits per pixel: bottom row first, in the order blue, green, red, each
/// row padded to a multiple of 4 bytes.
struct Bitmap {
    int width = 0;
    int height = 0;
    std::vector<unsigned char> bytes;
};

/// Reads a frame of this size, in pixels, from the current context. Must be called right after the control's
/// timer message was dispatched. Returns nothing where the frame does not fill that size yet, which happens
/// after the window was resized.
[[nodiscard]] std::optional<Bitmap> ReadFrame(int width, int height);

/// Writes a bitmap file and replaces an existing one. Throws viewer::FileError where it cannot be written; an
/// existing file is unchanged then.
void WriteBitmap(const std::filesystem::path& file, const Bitmap& bitmap);

} // namespace win32_dialog
