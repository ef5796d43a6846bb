#include "simulator/Canvas.h"

#include <cairo.h>
#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <string>

#include "simulator/Utf8.h"

namespace quordalvane::simulator {
namespace {

constexpr double defaultCellWidth = 12;
constexpr double defaultCellHeight = 24;
constexpr double fontSize = 20;  // fills such a cell with most monospaced fonts

void setColour(cairo_t* context, std::uint32_t colour) {
  cairo_set_source_rgb(context, (colour >> 16U & 0xffU) / 255.0, (colour >> 8U & 0xffU) / 255.0,
                       (colour & 0xffU) / 255.0);
}

void selectFont(cairo_t* context, bool bold) {
  cairo_select_font_face(context, "monospace", CAIRO_FONT_SLANT_NORMAL,
                         bold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
  cairo_set_font_size(context, fontSize);
}

// The font caches live until the program ends. Giving them back then leaves nothing for a leak
// checker to report; nobody draws any more by that time.
struct FontCaches {
  ~FontCaches() {
    cairo_debug_reset_static_data();
    FcFini();
  }
};

cairo_status_t append(void* closure, const unsigned char* data, unsigned length) {
  auto& bytes = *static_cast<Bytes*>(closure);
  bytes.insert(bytes.end(), data, data + length);
  return CAIRO_STATUS_SUCCESS;
}

}  // namespace

struct Canvas::Cairo {
  cairo_surface_t* surface;
  cairo_t* context;
};

Canvas::Canvas(unsigned width, unsigned height, std::uint32_t background) {
  static const FontCaches caches;
  cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(width),
                                                        static_cast<int>(height));
  cairo_ = std::make_unique<Cairo>(Cairo{surface, cairo_create(surface)});
  fill(0, 0, width, height, background);
}

Canvas::~Canvas() {
  cairo_destroy(cairo_->context);
  cairo_surface_destroy(cairo_->surface);
}

void Canvas::clipTo(double x, double y, double width, double height) {
  cairo_rectangle(cairo_->context, x, y, width, height);
  cairo_clip(cairo_->context);
}

void Canvas::fill(double x, double y, double width, double height, std::uint32_t colour) {
  setColour(cairo_->context, colour);
  cairo_rectangle(cairo_->context, x, y, width, height);
  cairo_fill(cairo_->context);
}

void Canvas::fillPolygon(const std::vector<Point>& corners, std::uint32_t colour) {
  setColour(cairo_->context, colour);
  for (const Point& corner : corners) {
    cairo_line_to(cairo_->context, corner.x, corner.y);
  }
  cairo_close_path(cairo_->context);
  cairo_fill(cairo_->context);
}

void Canvas::dots(const Bitmap& bitmap, double x, double y, unsigned scaleX, unsigned scaleY,
                  std::uint32_t colour) {
  setColour(cairo_->context, colour);
  for (unsigned row = 0; row < bitmap.height; ++row) {
    for (unsigned begin = 0, end = 0; begin < bitmap.width; begin = end + 1) {
      end = begin;
      while (end < bitmap.width && bitmap.black(end, row)) {
        ++end;
      }
      if (end > begin) {
        cairo_rectangle(cairo_->context, x + begin * scaleX, y + row * scaleY,
                        (end - begin) * scaleX, scaleY);
      }
    }
    cairo_fill(cairo_->context);
  }
}

void Canvas::text(std::u32string_view characters, const TextStyle& style, double x, double y,
                  std::uint32_t colour) {
  setColour(cairo_->context, colour);
  selectFont(cairo_->context, style.bold);
  for (char32_t c : characters) {
    if (c != U' ') {
      character(c, style, x, y);
    }
    x += style.cellWidth();
  }
}

void Canvas::character(char32_t c, const TextStyle& style, double x, double y) {
  cairo_t* context = cairo_->context;
  const std::string utf8 = toUtf8({&c, 1});
  cairo_save(context);
  cairo_translate(context, x, y);
  cairo_scale(context, style.cellWidth() / defaultCellWidth,
              style.cellHeight() / defaultCellHeight);
  cairo_font_extents_t font{};
  cairo_font_extents(context, &font);
  cairo_text_extents_t extents{};
  cairo_text_extents(context, utf8.c_str(), &extents);
  // A character that the font lacks is taken from another one, and may be wider than its cell.
  const double spare = defaultCellWidth - extents.x_advance;
  if (spare < 0) {
    cairo_scale(context, defaultCellWidth / extents.x_advance, 1);
  }
  cairo_move_to(context, std::max(0.0, spare / 2),
                (defaultCellHeight + font.ascent - font.descent) / 2);
  cairo_show_text(context, utf8.c_str());
  cairo_restore(context);
}

// After a first failure nothing more is drawn.
bool Canvas::failed() const {
  return cairo_status(cairo_->context) != CAIRO_STATUS_SUCCESS;
}

Picture Canvas::picture() const {
  cairo_surface_flush(cairo_->surface);
  const unsigned char* data = cairo_image_surface_get_data(cairo_->surface);
  if (data == nullptr || failed()) {
    return {};
  }
  Picture picture;
  picture.width = static_cast<unsigned>(cairo_image_surface_get_width(cairo_->surface));
  picture.height = static_cast<unsigned>(cairo_image_surface_get_height(cairo_->surface));
  const auto stride = static_cast<std::size_t>(cairo_image_surface_get_stride(cairo_->surface));
  picture.pixels.resize(std::size_t{picture.width} * picture.height);
  for (unsigned y = 0; y < picture.height; ++y) {
    const unsigned char* row = data + y * stride;
    for (unsigned x = 0; x < picture.width; ++x) {
      std::uint32_t pixel = 0;
      std::copy_n(row + std::size_t{4} * x, sizeof pixel, reinterpret_cast<unsigned char*>(&pixel));
      picture.pixels[std::size_t{y} * picture.width + x] = pixel & 0x00ffffffU;
    }
  }
  return picture;
}

Bytes Canvas::png() const {
  Bytes bytes;
  if (failed() ||
      cairo_surface_write_to_png_stream(cairo_->surface, append, &bytes) != CAIRO_STATUS_SUCCESS) {
    bytes.clear();
  }
  return bytes;
}

}  // namespace quordalvane::simulator
