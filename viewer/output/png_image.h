// Pictures and text drawn onto an image and written as a PNG file, by the Cairo library.
#pragma once

#include "viewer/output/picture.h"

#include <memory>
#include <string>

namespace viewer
{

/// A drawing surface, white at first. Its operations throw std::bad_alloc where memory runs out.
class PngImage
{
  public:
    /// In pixels.
    PngImage(int width, int height);
    ~PngImage();
    PngImage(const PngImage&) = delete;
    PngImage& operator=(const PngImage&) = delete;

    /// Copies a picture with its upper left corner to this position; parts outside of the image are cut off.
    void Draw(const Picture& picture, int left, int top);
    /// Draws a line of text, `size` pixels high, centred on `center_x`, on the line `baseline`. Text wider
    /// than `max_width` is drawn smaller. In text that is not valid UTF-8, other bytes than ASCII become
    /// question marks.
    void DrawText(const std::string& text, double center_x, double baseline, double size, double max_width);

    /// Writes a PNG file, completely or not at all: an existing file is replaced only when the new one is
    /// complete, and a link keeps pointing to its file. Throws FileError.
    void WritePng(const std::string& path) const;

  private:
    struct Surface;
    std::unique_ptr<Surface> surface_;
};

/// Writes the picture as a PNG file, as `PngImage::WritePng` does. Throws FileError.
void WritePng(const Picture& picture, const std::string& path);

} // namespace viewer
