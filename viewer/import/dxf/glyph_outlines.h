// The outlines of characters, from the fonts of the system. Each outline is made once.
#pragma once

#include "viewer/import/dxf/glyph.h"

#include <cstddef>
#include <map>
#include <memory>
#include <utility>

namespace viewer
{

/// The maximum number of different outlines.
inline constexpr std::size_t kMaxGlyphs = 100'000;

/// The design of a font. Each font that a drawing names is replaced by one of these. The font of tolerances
/// has signs for some letters; other letters are as in `Sans`.
enum class FontFamily { Sans, Serif, Mono, Tolerance };

struct FontFace {
    FontFamily family = FontFamily::Sans;
    bool is_bold = false;
    bool is_italic = false;

    auto operator<=>(const FontFace&) const = default;
};

class GlyphOutlines
{
  public:
    GlyphOutlines();
    ~GlyphOutlines();
    GlyphOutlines(const GlyphOutlines&) = delete;
    GlyphOutlines& operator=(const GlyphOutlines&) = delete;

    /// The character in the face, or in another font of the system if the face does not have it. It is a box
    /// if no font has it, and empty if the system has no font at all. Curves are cut within 1/100 of the
    /// height. Null for a surrogate, for numbers beyond Unicode, and where there are `kMaxGlyphs` others.
    [[nodiscard]] std::shared_ptr<const Glyph> Of(const FontFace& face, char32_t character);

    /// Whether the system has a font.
    [[nodiscard]] bool HasFont();

  private:
    class LoadedFace;
    LoadedFace& FaceOf(const FontFace& face);
    [[nodiscard]] Glyph Make(const FontFace& face, char32_t character);

    std::map<FontFace, std::unique_ptr<LoadedFace>> faces_;
    std::map<std::pair<FontFace, char32_t>, std::shared_ptr<const Glyph>> glyphs_;
};

} // namespace viewer
