#include "viewer/apps/win32-dialog/bitmap.h"

#include "platform/tools/atomic_file.h"
#include "platform/tools/utf8.h"
#include "platform/winsys/frame_resolve.h"
#include "platform/winsys/opengl.h"
#include "platform/winsys/winsys.h"
#include "viewer/text/file_error.h"

#include <algorithm>
#include <vector>

namespace win32_dialog
{

namespace
{

constexpr std::size_t kChannels = 3;

std::size_t BytesPerRow(int width)
{
    constexpr std::size_t kWord = sizeof(DWORD);
    return (static_cast<std::size_t>(width) * kChannels + kWord - 1) / kWord * kWord;
}

template <typename Record>
void Write(AtomicFile& out, const Record& record)
{
    out.Write({reinterpret_cast<const char*>(&record), sizeof(record)});
}

void Write(AtomicFile& out, const Bitmap& bitmap)
{
    BITMAPFILEHEADER header{};
    header.bfType = 'B' | 'M' << 8;
    header.bfOffBits = sizeof(BITMAPFILEHEADER) + sizeof(BITMAPINFOHEADER);
    header.bfSize = header.bfOffBits + static_cast<DWORD>(bitmap.bytes.size());
    BITMAPINFOHEADER info{};
    info.biSize = sizeof(info);
    info.biWidth = bitmap.width;
    info.biHeight = bitmap.height;
    info.biPlanes = 1;
    info.biBitCount = 8 * kChannels;
    info.biCompression = BI_RGB;
    Write(out, header);
    Write(out, info);
    out.Write({reinterpret_cast<const char*>(bitmap.bytes.data()), bitmap.bytes.size()});
}

} // namespace

std::optional<Bitmap> ReadFrame(int width, int height)
{
    constexpr std::size_t kReadChannels = 4;
    const auto columns = static_cast<std::size_t>(width);
    const auto rows = static_cast<std::size_t>(height);
    std::vector<unsigned char> pixels(columns * rows * kReadChannels);
    const winsys::FrameResolve resolve(width, height);
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    const std::size_t row_size = BytesPerRow(width);
    Bitmap bitmap{width, height, std::vector<unsigned char>(row_size * rows)};
    for (std::size_t row = 0; row < rows; ++row)
        for (std::size_t x = 0; x < columns; ++x) {
            const unsigned char* const from = &pixels[(row * columns + x) * kReadChannels];
            // NOTE: Mesa applies a new window size one or two frames late. The control clears to an alpha of
            // 1, and blending leaves at least three quarters of it, so an alpha of 0 marks a pixel that the
            // frame does not reach.
            if (from[3] == 0)
                return std::nullopt;
            unsigned char* const to = &bitmap.bytes[row * row_size + x * kChannels];
            std::reverse_copy(from, from + kChannels, to);
        }
    return bitmap;
}

void WriteBitmap(const std::filesystem::path& file, const Bitmap& bitmap)
{
    try {
        AtomicFile out(file);
        Write(out, bitmap);
        out.Commit();
    } catch (const AtomicFileError&) {
        throw viewer::FileError(Utf8FromWide(file.wstring()), "cannot be written");
    }
}

} // namespace win32_dialog
