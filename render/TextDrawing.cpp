#include "render/TextDrawing.h"

#include <pango/pangocairo.h>

#include <algorithm>
#include <new>
#include <vector>

namespace quordalvane::render {
namespace {

// The measures of the printer's usual font: a letter is 12 dots wide, and lines are 30 dots apart.
constexpr int letterWidth = 12;
constexpr int lineHeight = 30;
constexpr int spaceBelow = 4;

constexpr int mostRows = 255;
constexpr std::size_t mostMissing = 100;
constexpr std::uint8_t halfInk = 128;

struct Unref {
  void operator()(void* object) const { g_object_unref(object); }
};
template <typename Object>
using Owned = std::unique_ptr<Object, Unref>;

Owned<PangoContext> makeContext() {
  const Owned<PangoFontMap> fonts(pango_cairo_font_map_new());
  Owned<PangoContext> context(pango_font_map_create_context(fonts.get()));
  const std::unique_ptr<cairo_font_options_t, void (*)(cairo_font_options_t*)> options(
      cairo_font_options_create(), cairo_font_options_destroy);
  // Letter widths rounded to whole dots would put columns out of alignment.
  cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
  cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_NONE);
  cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
  pango_cairo_context_set_font_options(context.get(), options.get());
  pango_context_set_round_glyph_positions(context.get(), FALSE);
  return context;
}

using Font = std::unique_ptr<PangoFontDescription, void (*)(PangoFontDescription*)>;

// Returns the monospaced font, in the size at which its letters are as wide as the printer's.
Font makeFont(PangoContext* context) {
  Font font(pango_font_description_from_string("Monospace"), pango_font_description_free);
  const double trial = 20.0 * PANGO_SCALE;
  pango_font_description_set_absolute_size(font.get(), trial);
  PangoFontMetrics* const metrics = pango_context_get_metrics(context, font.get(), nullptr);
  const int advance = pango_font_metrics_get_approximate_digit_width(metrics);
  pango_font_metrics_unref(metrics);
  if (advance > 0) {
    pango_font_description_set_absolute_size(font.get(),
                                             trial * letterWidth * PANGO_SCALE / advance);
  }
  return font;
}

}  // namespace

struct TextDrawing::Pango {
  explicit Pango(int width)
      : context(makeContext()),
        layout(pango_layout_new(context.get())),
        surface(cairo_image_surface_create(CAIRO_FORMAT_A8, width, mostRows),
                cairo_surface_destroy),
        canvas(cairo_create(surface.get()), cairo_destroy) {
    if (cairo_status(canvas.get()) != CAIRO_STATUS_SUCCESS) {
      throw std::bad_alloc();
    }
    pango_layout_set_font_description(layout.get(), makeFont(context.get()).get());
    pango_layout_set_width(layout.get(), width * PANGO_SCALE);
    pango_layout_set_wrap(layout.get(), PANGO_WRAP_WORD_CHAR);
    pango_layout_set_spacing(layout.get(), spaceBelow * PANGO_SCALE);
    pango_layout_set_auto_dir(layout.get(), TRUE);
  }

  Owned<PangoContext> context;
  Owned<PangoLayout> layout;
  std::unique_ptr<cairo_surface_t, void (*)(cairo_surface_t*)> surface;
  std::unique_ptr<cairo_t, void (*)(cairo_t*)> canvas;
};

TextDrawing::TextDrawing(unsigned width)
    : width_(width), pango_(std::make_unique<Pango>(static_cast<int>(width))) {}

TextDrawing::~TextDrawing() = default;

void TextDrawing::draw(const std::string& line, const Output& takeRow) {
  pango_layout_set_text(pango_->layout.get(), line.data(), static_cast<int>(line.size()));
  noteMissing();
  PangoRectangle ink;
  PangoRectangle logical;
  pango_layout_get_pixel_extents(pango_->layout.get(), &ink, &logical);
  // The band includes accents above the first line and below the last one.
  const int top = std::min(0, ink.y);
  const int bottom = std::max({logical.height + spaceBelow, ink.y + ink.height, lineHeight});
  for (int row = top; row < bottom; row += mostRows) {
    drawBand(row, std::min(mostRows, bottom - row), takeRow);
  }
}

void TextDrawing::noteMissing() {
  if (pango_layout_get_unknown_glyphs_count(pango_->layout.get()) == 0) {
    return;
  }
  const std::unique_ptr<PangoLayoutIter, void (*)(PangoLayoutIter*)> runs(
      pango_layout_get_iter(pango_->layout.get()), pango_layout_iter_free);
  do {
    const PangoLayoutRun* const run = pango_layout_iter_get_run_readonly(runs.get());
    for (int i = 0; run != nullptr && i < run->glyphs->num_glyphs; ++i) {
      const PangoGlyph glyph = run->glyphs->glyphs[i].glyph;
      if ((glyph & PANGO_GLYPH_UNKNOWN_FLAG) != 0 && missing_.size() < mostMissing) {
        missing_.insert(glyph & ~PANGO_GLYPH_UNKNOWN_FLAG);
      }
    }
  } while (pango_layout_iter_next_run(runs.get()) != 0);
}

void TextDrawing::drawBand(int top, int rows, const Output& takeRow) {
  cairo_t* const canvas = pango_->canvas.get();
  cairo_set_operator(canvas, CAIRO_OPERATOR_CLEAR);
  cairo_paint(canvas);
  cairo_set_operator(canvas, CAIRO_OPERATOR_OVER);
  cairo_move_to(canvas, 0, -top);
  pango_cairo_show_layout(canvas, pango_->layout.get());
  cairo_surface_flush(pango_->surface.get());
  const auto stride =
      static_cast<std::size_t>(cairo_image_surface_get_stride(pango_->surface.get()));
  const std::uint8_t* row = cairo_image_surface_get_data(pango_->surface.get());
  std::vector<std::uint8_t> dots(width_ / 8);
  for (int y = 0; y < rows; ++y, row += stride) {
    std::ranges::fill(dots, std::uint8_t{0});
    for (std::size_t x = 0; x < width_; ++x) {
      if (row[x] >= halfInk) {
        dots[x / 8] = static_cast<std::uint8_t>(dots[x / 8] | 0x80U >> x % 8);
      }
    }
    takeRow(dots);
  }
}

}  // namespace quordalvane::render
