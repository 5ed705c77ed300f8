#include "viewer/import/dxf/glyph_outlines.h"

#include "platform/tools/utf8.h"
#include "viewer/import/dxf/tolerance_signs.h"

#include <cairo-ft.h>
#include <cairo.h>
#include <fontconfig/fontconfig.h>

#include <cstddef>
#include <optional>
#include <string>
#include <utility>

namespace viewer
{

namespace
{

/// The size that outlines are made in. Cairo's coordinates have a resolution of 1/256.
constexpr double kSize = 1000.0;
/// DejaVu Sans is wider than the fonts that drawings are made with: texts would leave their frames.
constexpr double kSansWidth = 0.9;
constexpr double kTolerance = 0.01 * 0.73 * kSize;

template <auto Delete>
struct Deleter {
    template <typename T>
    void operator()(T* object) const
    {
        Delete(object);
    }
};

using PatternPointer = std::unique_ptr<FcPattern, Deleter<FcPatternDestroy>>;
using FontSetPointer = std::unique_ptr<FcFontSet, Deleter<FcFontSetDestroy>>;
using SurfacePointer = std::unique_ptr<cairo_surface_t, Deleter<cairo_surface_destroy>>;
using ContextPointer = std::unique_ptr<cairo_t, Deleter<cairo_destroy>>;
using FontFacePointer = std::unique_ptr<cairo_font_face_t, Deleter<cairo_font_face_destroy>>;
using OptionsPointer = std::unique_ptr<cairo_font_options_t, Deleter<cairo_font_options_destroy>>;
using ScaledFontPointer = std::unique_ptr<cairo_scaled_font_t, Deleter<cairo_scaled_font_destroy>>;
using PathPointer = std::unique_ptr<cairo_path_t, Deleter<cairo_path_destroy>>;

const char* NameOf(FontFamily family)
{
    switch (family) {
    case FontFamily::Serif:
        return "DejaVu Serif";
    case FontFamily::Mono:
        return "DejaVu Sans Mono";
    default:
        return "DejaVu Sans";
    }
}

PatternPointer PatternOf(const FontFace& face)
{
    PatternPointer pattern(FcPatternCreate());
    FcPatternAddString(pattern.get(), FC_FAMILY, reinterpret_cast<const FcChar8*>(NameOf(face.family)));
    FcPatternAddInteger(pattern.get(), FC_WEIGHT, face.is_bold ? FC_WEIGHT_BOLD : FC_WEIGHT_NORMAL);
    FcPatternAddInteger(pattern.get(), FC_SLANT, face.is_italic ? FC_SLANT_OBLIQUE : FC_SLANT_ROMAN);
    FcPatternAddBool(pattern.get(), FC_OUTLINE, FcTrue);
    FcConfigSubstitute(nullptr, pattern.get(), FcMatchPattern);
    FcDefaultSubstitute(pattern.get());
    return pattern;
}

bool HasOutlines(FcPattern* font)
{
    FcBool has_outlines = FcFalse;
    FcBool has_colors = FcFalse;
    FcPatternGetBool(font, FC_OUTLINE, 0, &has_outlines);
    FcPatternGetBool(font, FC_COLOR, 0, &has_colors);
    return has_outlines == FcTrue && has_colors == FcFalse;
}

bool HasCharacter(FcPattern* font, char32_t character)
{
    FcCharSet* characters = nullptr;
    return FcPatternGetCharSet(font, FC_CHARSET, 0, &characters) == FcResultMatch &&
           FcCharSetHasChar(characters, static_cast<FcChar32>(character)) == FcTrue;
}

ScaledFontPointer ScaledFontOf(FcPattern* font)
{
    const FontFacePointer face(cairo_ft_font_face_create_for_pattern(font));
    const OptionsPointer options(cairo_font_options_create());
    cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
    cairo_matrix_t scale;
    cairo_matrix_t identity;
    cairo_matrix_init_scale(&scale, kSize, kSize);
    cairo_matrix_init_identity(&identity);
    ScaledFontPointer scaled(cairo_scaled_font_create(face.get(), &scale, &identity, options.get()));
    if (cairo_scaled_font_status(scaled.get()) != CAIRO_STATUS_SUCCESS)
        scaled.reset();
    return scaled;
}

/// The glyphs of one character in a font.
class ShapedCharacter
{
  public:
    ShapedCharacter(cairo_scaled_font_t* font, char32_t character)
    {
        const std::string text = Utf8FromWide(std::wstring(1, static_cast<wchar_t>(character)));
        cairo_scaled_font_text_to_glyphs(font, 0.0, 0.0, text.data(), static_cast<int>(text.size()), &glyphs_,
                                         &count_, nullptr, nullptr, nullptr);
        if (glyphs_ != nullptr)
            cairo_scaled_font_glyph_extents(font, glyphs_, count_, &extents_);
    }
    ~ShapedCharacter() { cairo_glyph_free(glyphs_); }
    ShapedCharacter(const ShapedCharacter&) = delete;
    ShapedCharacter& operator=(const ShapedCharacter&) = delete;

    [[nodiscard]] const cairo_text_extents_t& Extents() const { return extents_; }
    void AddPath(cairo_t* context) const { cairo_glyph_path(context, glyphs_, count_); }

  private:
    cairo_glyph_t* glyphs_ = nullptr;
    int count_ = 0;
    cairo_text_extents_t extents_{};
};

/// The straight parts of a path. Cairo's y axis points down.
std::vector<Segment> SegmentsOf(const cairo_path_t& path, double x_scale, double y_scale)
{
    std::vector<Segment> segments;
    Point start;
    Point last;
    const auto go = [&](const Point& to) {
        if (to != last)
            segments.push_back({last, to});
        last = to;
    };
    for (int i = 0; i < path.num_data; i += path.data[i].header.length) {
        const cairo_path_data_t* data = path.data + i;
        if (data->header.type == CAIRO_PATH_CLOSE_PATH) {
            go(start);
            continue;
        }
        const Point point{data[1].point.x * x_scale, -data[1].point.y * y_scale, 0.0};
        if (data->header.type == CAIRO_PATH_LINE_TO)
            go(point);
        else
            start = last = point;
    }
    return segments;
}

} // namespace

/// The fonts of a face: its own, and those that have further characters. They are loaded when needed.
class GlyphOutlines::LoadedFace
{
  public:
    explicit LoadedFace(const FontFace& face)
        : pattern_(PatternOf(face)), surface_(cairo_image_surface_create(CAIRO_FORMAT_A8, 1, 1)),
          context_(cairo_create(surface_.get())), width_(face.family == FontFamily::Sans ? kSansWidth : 1.0)
    {
        cairo_set_tolerance(context_.get(), kTolerance);
        FcResult result = FcResultNoMatch;
        if (PatternPointer own(FcFontMatch(nullptr, pattern_.get(), &result)); own)
            fonts_.push_back({std::move(own), nullptr});
        if (!IsUsable())
            return;
        const double height = -ShapedCharacter(ScaledFont(0), U'H').Extents().y_bearing;
        if (height > 0.0)
            scale_ = 1.0 / height;
    }

    [[nodiscard]] bool IsUsable() { return !fonts_.empty() && ScaledFont(0) != nullptr; }

    [[nodiscard]] Glyph Make(char32_t character)
    {
        cairo_scaled_font_t* font = FontWith(character);
        Glyph glyph;
        if (font == nullptr)
            return glyph;
        const ShapedCharacter shaped(font, character);
        glyph.advance = shaped.Extents().x_advance * scale_ * width_;
        cairo_set_scaled_font(context_.get(), font);
        cairo_new_path(context_.get());
        shaped.AddPath(context_.get());
        const PathPointer path(cairo_copy_path_flat(context_.get()));
        if (path->status == CAIRO_STATUS_SUCCESS)
            glyph.outline = SegmentsOf(*path, scale_ * width_, scale_);
        return glyph;
    }

  private:
    struct Font {
        PatternPointer pattern;
        ScaledFontPointer scaled; ///< null until it is loaded
    };

    cairo_scaled_font_t* ScaledFont(std::size_t number)
    {
        Font& font = fonts_[number];
        if (!font.scaled)
            font.scaled = ScaledFontOf(font.pattern.get());
        return font.scaled.get();
    }

    /// The first font that has the character, else the face's own, which draws a box for it.
    cairo_scaled_font_t* FontWith(char32_t character)
    {
        if (fonts_.empty())
            return nullptr;
        if (HasCharacter(fonts_[0].pattern.get(), character))
            return ScaledFont(0);
        if (!has_all_)
            AddOtherFonts();
        for (std::size_t i = 1; i < fonts_.size(); ++i)
            if (HasCharacter(fonts_[i].pattern.get(), character) && ScaledFont(i) != nullptr)
                return ScaledFont(i);
        return ScaledFont(0);
    }

    void AddOtherFonts()
    {
        has_all_ = true;
        FcResult result = FcResultNoMatch;
        const FontSetPointer all(FcFontSort(nullptr, pattern_.get(), FcTrue, nullptr, &result));
        for (int i = 0; all && i < all->nfont; ++i)
            if (HasOutlines(all->fonts[i]))
                fonts_.push_back(
                    {PatternPointer(FcFontRenderPrepare(nullptr, pattern_.get(), all->fonts[i])), nullptr});
    }

    PatternPointer pattern_;
    SurfacePointer surface_;
    ContextPointer context_;
    double width_;
    double scale_ = 1.0 / (0.73 * kSize);
    std::vector<Font> fonts_;
    bool has_all_ = false;
};

GlyphOutlines::GlyphOutlines() = default;
GlyphOutlines::~GlyphOutlines() = default;

GlyphOutlines::LoadedFace& GlyphOutlines::FaceOf(const FontFace& face)
{
    std::unique_ptr<LoadedFace>& loaded = faces_[face];
    if (!loaded)
        loaded = std::make_unique<LoadedFace>(face);
    return *loaded;
}

bool GlyphOutlines::HasFont()
{
    return FaceOf({}).IsUsable();
}

Glyph GlyphOutlines::Make(const FontFace& face, char32_t character)
{
    if (face.family != FontFamily::Tolerance)
        return FaceOf(face).Make(character);
    std::optional<ToleranceSign> sign = SignOfTolerance(character);
    if (!sign)
        return FaceOf({}).Make(character);
    if (sign->letter == 0)
        return std::move(sign->glyph);
    const Glyph letter = FaceOf({}).Make(sign->letter);
    const Point corner{(sign->glyph.advance - letter.advance * kLetterInSign) * 0.5,
                       (1.0 - kLetterInSign) * 0.5, 0.0};
    for (const Segment& segment : letter.outline)
        sign->glyph.outline.push_back(
            {corner + segment.from * kLetterInSign, corner + segment.to * kLetterInSign});
    return std::move(sign->glyph);
}

std::shared_ptr<const Glyph> GlyphOutlines::Of(const FontFace& face, char32_t character)
{
    constexpr char32_t kMaxCharacter = 0x10FFFF;
    const bool is_surrogate = character >= 0xD800 && character <= 0xDFFF;
    if (character > kMaxCharacter || is_surrogate)
        return nullptr;
    const auto known = glyphs_.find({face, character});
    if (known != glyphs_.end())
        return known->second;
    if (glyphs_.size() == kMaxGlyphs)
        return nullptr;
    auto glyph = std::make_shared<const Glyph>(Make(face, character));
    glyphs_.emplace(std::pair(face, character), glyph);
    return glyph;
}

} // namespace viewer
