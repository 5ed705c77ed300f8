// Pictures on their way into PNG files, and text on them; the Cairo library does both.
#pragma once

#include "viewer/output/picture.h"

#include <memory>
#include <string>

namespace viewer
{

/// A drawing surface of pixels, white at first. Throws std::bad_alloc where there is no room for it.
class PngImage
{
  public:
    PngImage(int width, int height);
    ~PngImage();
    PngImage(const PngImage&) = delete;
    PngImage& operator=(const PngImage&) = delete;

    /// Copies a picture with its upper left corner there; what does not fit is cut off.
    void Draw(const Picture& picture, int left, int top);
    /// Writes a line of text, `size` pixels high, centred on `center_x`, standing on `baseline`. Wider
    /// text than `max_width` is written smaller.
    void DrawText(const std::string& text, double center_x, double baseline, double size, double max_width);

    /// Writes a PNG file whole or not at all: a file that was there stays as it was until the new one is
    /// complete. Throws FileError.
    void WritePng(const std::string& path) const;

  private:
    struct Surface;
    std::unique_ptr<Surface> surface_;
};

/// Writes the picture as a PNG file, whole or not at all. Throws FileError.
void WritePng(const Picture& picture, const std::string& path);

} // namespace viewer
