#include "viewer/output/png_image.h"

#include "platform/tools/atomic_file.h"
#include "viewer/text/file_error.h"

#include <cairo.h>

#include <algorithm>
#include <cstring>
#include <new>

namespace viewer
{

namespace
{

struct SurfaceDeleter {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};

struct ContextDeleter {
    void operator()(cairo_t* context) const { cairo_destroy(context); }
};

using SurfacePointer = std::unique_ptr<cairo_surface_t, SurfaceDeleter>;
using ContextPointer = std::unique_ptr<cairo_t, ContextDeleter>;

SurfacePointer MakeSurface(int width, int height)
{
    SurfacePointer surface(cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height));
    if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS)
        throw std::bad_alloc();
    return surface;
}

cairo_status_t WriteToFile(void* closure, const unsigned char* data, unsigned int length)
{
    try {
        static_cast<AtomicFile*>(closure)->Write({reinterpret_cast<const char*>(data), length});
        return CAIRO_STATUS_SUCCESS;
    } catch (const AtomicFileError&) {
        // No exception may pass through Cairo. The file repeats it at its next call.
        return CAIRO_STATUS_WRITE_ERROR;
    }
}

/// Whether Cairo can draw this text. It takes only valid UTF-8.
bool IsWritable(const std::string& text)
{
    const SurfacePointer surface = MakeSurface(1, 1);
    const ContextPointer scratch(cairo_create(surface.get()));
    cairo_text_extents_t extents;
    cairo_text_extents(scratch.get(), text.c_str(), &extents);
    return cairo_status(scratch.get()) == CAIRO_STATUS_SUCCESS;
}

std::string WritableText(std::string text)
{
    if (!IsWritable(text))
        std::replace_if(
            text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) >= 0x80; }, '?');
    return text;
}

} // namespace

struct PngImage::Surface {
    SurfacePointer surface;
    ContextPointer context;

    Surface(int width, int height) : surface(MakeSurface(width, height)), context(cairo_create(surface.get()))
    {
    }
};

PngImage::PngImage(int width, int height) : surface_(std::make_unique<Surface>(width, height))
{
    cairo_t* context = surface_->context.get();
    cairo_set_source_rgb(context, 1.0, 1.0, 1.0);
    cairo_paint(context);
    cairo_select_font_face(context, "DejaVu Sans", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
}

PngImage::~PngImage() = default;

void PngImage::Draw(const Picture& picture, int left, int top)
{
    const SurfacePointer source = MakeSurface(picture.width, picture.height);
    cairo_surface_flush(source.get());
    unsigned char* rows = cairo_image_surface_get_data(source.get());
    const auto stride = static_cast<std::size_t>(cairo_image_surface_get_stride(source.get()));
    const auto width = static_cast<std::size_t>(picture.width);
    for (std::size_t row = 0; row < static_cast<std::size_t>(picture.height); ++row)
        std::memcpy(rows + row * stride, &picture.pixels[row * width], width * sizeof(std::uint32_t));
    cairo_surface_mark_dirty(source.get());
    cairo_set_source_surface(surface_->context.get(), source.get(), left, top);
    cairo_paint(surface_->context.get());
}

void PngImage::DrawText(const std::string& text, double center_x, double baseline, double size,
                        double max_width)
{
    constexpr double kInk = 0.15;
    const std::string line = WritableText(text);
    cairo_t* context = surface_->context.get();
    cairo_text_extents_t extents;
    cairo_set_font_size(context, size);
    cairo_text_extents(context, line.c_str(), &extents);
    if (extents.width > max_width) {
        cairo_set_font_size(context, size * max_width / extents.width);
        cairo_text_extents(context, line.c_str(), &extents);
    }
    cairo_set_source_rgb(context, kInk, kInk, kInk);
    cairo_move_to(context, center_x - extents.width / 2 - extents.x_bearing, baseline);
    cairo_show_text(context, line.c_str());
}

void PngImage::WritePng(const std::string& path) const
{
    try {
        AtomicFile file(path);
        const cairo_status_t status =
            cairo_surface_write_to_png_stream(surface_->surface.get(), WriteToFile, &file);
        if (status != CAIRO_STATUS_SUCCESS && status != CAIRO_STATUS_WRITE_ERROR)
            throw FileError(path, cairo_status_to_string(status));
        file.Commit();
    } catch (const AtomicFileError& error) {
        throw FileError(path, error.what());
    }
}

void WritePng(const Picture& picture, const std::string& path)
{
    PngImage image(picture.width, picture.height);
    image.Draw(picture, 0, 0);
    image.WritePng(path);
}

} // namespace viewer
