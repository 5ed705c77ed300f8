#include "tests/viewer/apps/win32-dialog/bitmap_file.h"

#include "platform/winsys/winsys.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace dialog_test
{

Color Picture::At(int x, int y) const
{
    return pixels.at(static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                     static_cast<std::size_t>(x));
}

int Picture::Count(const std::function<bool(Color)>& is_counted) const
{
    return static_cast<int>(std::count_if(pixels.begin(), pixels.end(), is_counted));
}

Picture ReadBitmap(const std::filesystem::path& file)
{
    std::ifstream in(file, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(in), {}};
    BITMAPFILEHEADER header{};
    BITMAPINFOHEADER info{};
    if (bytes.size() < sizeof(header) + sizeof(info))
        throw std::runtime_error(file.string() + " is no bitmap");
    std::memcpy(&header, bytes.data(), sizeof(header));
    std::memcpy(&info, bytes.data() + sizeof(header), sizeof(info));
    if (bytes.substr(0, 2) != "BM" || header.bfSize != bytes.size() || info.biSize != sizeof(info) ||
        info.biBitCount != 24 || info.biPlanes != 1 || info.biCompression != BI_RGB || info.biWidth <= 0 ||
        info.biHeight <= 0)
        throw std::runtime_error(file.string() + " has a header of another kind");
    const auto width = static_cast<std::size_t>(info.biWidth);
    const auto height = static_cast<std::size_t>(info.biHeight);
    const std::size_t row_size = (width * 3 + 3) / 4 * 4;
    if (bytes.size() != header.bfOffBits + row_size * height)
        throw std::runtime_error(file.string() + " has another length than its header says");
    Picture picture{info.biWidth, info.biHeight, {}};
    for (std::size_t row = height; row-- > 0;)
        for (std::size_t x = 0; x < width; ++x) {
            const char* const pixel = &bytes[header.bfOffBits + row * row_size + x * 3];
            picture.pixels.push_back({static_cast<std::uint8_t>(pixel[2]),
                                      static_cast<std::uint8_t>(pixel[1]),
                                      static_cast<std::uint8_t>(pixel[0])});
        }
    return picture;
}

int HueOf(Color color)
{
    const int limit = std::max({color.red, color.green, color.blue}) * 7 / 10;
    return (color.red > limit ? 4 : 0) + (color.green > limit ? 2 : 0) + (color.blue > limit ? 1 : 0);
}

} // namespace dialog_test
