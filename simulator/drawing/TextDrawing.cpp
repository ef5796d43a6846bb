#include "simulator/drawing/TextDrawing.h"

#include <cairo.h>
#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <tuple>

#include "simulator/Utf8.h"

namespace quordalvane::simulator {
namespace {

constexpr double cellWidth = 12;
constexpr double cellHeight = 24;

// In most monospaced fonts, letters of this size fill a cell.
constexpr double fontSize = 20;

// The cache is emptied when its glyphs need more bytes than this.
constexpr std::size_t mostCached = std::size_t{4} << 20U;

struct GlyphKey {
  char32_t character;
  bool bold;
  bool wide;
  unsigned width;
  unsigned height;

  bool operator<(const GlyphKey& other) const {
    return std::tie(character, bold, wide, width, height) <
           std::tie(other.character, other.bold, other.wide, other.width, other.height);
  }
};

// Frees the font caches of cairo and fontconfig at the end of the program, so that a leak checker
// reports nothing. No thread may draw after that.
struct FontCaches {
  ~FontCaches() {
    cairo_debug_reset_static_data();
    FcFini();
  }
};

struct Deleter {
  void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
  void operator()(cairo_t* context) const { cairo_destroy(context); }
  void operator()(FcPattern* pattern) const { FcPatternDestroy(pattern); }
  void operator()(FcCharSet* set) const { FcCharSetDestroy(set); }
};

template <typename Type>
using Owned = std::unique_ptr<Type, Deleter>;

// Returns a font family that has the character, if possible a monospaced one.
std::string familyFor(char32_t character) {
  const Owned<FcPattern> wanted(FcPatternCreate());
  const Owned<FcCharSet> set(FcCharSetCreate());
  if (!wanted || !set) {
    return "monospace";
  }
  FcCharSetAddChar(set.get(), character);
  FcPatternAddString(wanted.get(), FC_FAMILY, reinterpret_cast<const FcChar8*>("monospace"));
  FcPatternAddCharSet(wanted.get(), FC_CHARSET, set.get());
  FcConfigSubstitute(nullptr, wanted.get(), FcMatchPattern);
  FcDefaultSubstitute(wanted.get());
  FcResult result = FcResultNoMatch;
  const Owned<FcPattern> found(FcFontMatch(nullptr, wanted.get(), &result));
  FcChar8* family = nullptr;
  if (!found || FcPatternGetString(found.get(), FC_FAMILY, 0, &family) != FcResultMatch) {
    return "monospace";
  }
  return reinterpret_cast<const char*>(family);
}

void drawGlyph(cairo_t* context, const GlyphKey& key) {
  const double width = key.wide ? 2 * cellWidth : cellWidth;
  const std::string family = key.character < 0x80 ? "monospace" : familyFor(key.character);
  cairo_select_font_face(context, family.c_str(), CAIRO_FONT_SLANT_NORMAL,
                         key.bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
  cairo_set_font_size(context, fontSize);
  cairo_scale(context, key.width / width, key.height / cellHeight);
  const std::string utf8 = toUtf8({&key.character, 1});
  cairo_font_extents_t font{};
  cairo_font_extents(context, &font);
  cairo_text_extents_t extents{};
  cairo_text_extents(context, utf8.c_str(), &extents);
  const double spare = width - extents.x_advance;
  if (spare < 0) {  // a letter of another font may be wider than its cell
    cairo_scale(context, width / extents.x_advance, 1);
  }
  cairo_move_to(context, std::max(0.0, spare / 2), (cellHeight + font.ascent - font.descent) / 2);
  cairo_show_text(context, utf8.c_str());
}

Plane glyphOf(const GlyphKey& key) {
  Plane glyph(key.width, key.height);
  const Owned<cairo_surface_t> surface(cairo_image_surface_create(
      CAIRO_FORMAT_A8, static_cast<int>(key.width), static_cast<int>(key.height)));
  const Owned<cairo_t> context(cairo_create(surface.get()));
  drawGlyph(context.get(), key);
  cairo_surface_flush(surface.get());
  const unsigned char* data = cairo_image_surface_get_data(surface.get());
  if (data == nullptr) {
    return glyph;
  }
  const auto stride = static_cast<std::size_t>(cairo_image_surface_get_stride(surface.get()));
  for (unsigned y = 0; y < key.height; ++y) {
    std::copy_n(data + y * stride, key.width, glyph.data() + std::size_t{y} * key.width);
  }
  return glyph;
}

/// Keeps glyphs that were drawn, because most of a receipt repeats a few dozen of them.
class GlyphCache {
 public:
  const Plane& glyph(const GlyphKey& key) {
    const auto found = glyphs_.find(key);
    if (found != glyphs_.end()) {
      return found->second;
    }
    if (bytes_ > mostCached) {
      glyphs_.clear();
      bytes_ = 0;
    }
    bytes_ += sizeof(GlyphKey) + sizeof(Plane) + std::size_t{key.width} * key.height;
    return glyphs_.emplace(key, glyphOf(key)).first->second;
  }

  std::mutex mutex;  // each thread must hold this while it draws

 private:
  FontCaches fonts_;
  std::map<GlyphKey, Plane> glyphs_;
  std::size_t bytes_ = 0;
};

}  // namespace

void drawText(Plane& plane, std::u32string_view characters, const TextStyle& style, int x, int y,
              std::uint8_t darkness) {
  static GlyphCache cache;
  const std::scoped_lock lock(cache.mutex);
  for (const char32_t character : characters) {
    if (character != U' ') {
      const Plane& glyph =
          cache.glyph({character, style.bold, style.wide, style.glyphWidth(), style.glyphHeight()});
      if (style.rotated) {
        plane.draw(glyph.turned(1), x, y, darkness);
      } else {
        plane.draw(glyph, x, y, darkness);
      }
    }
    x += static_cast<int>(style.cellWidth());
  }
}

}  // namespace quordalvane::simulator
