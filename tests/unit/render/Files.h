#pragma once

#include <cairo.h>
#include <png.h>
#include <zlib.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>

#include <jpeglib.h>

#include "tests/unit/render/Job.h"

namespace quordalvane::render {

/// A PNG file of this size. `colour` returns each pixel as 0xAARRGGBB, not multiplied by the alpha.
inline Bytes pngFile(int width, int height, const std::function<std::uint32_t(int, int)>& colour) {
  cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, width, height);
  cairo_t* const canvas = cairo_create(surface);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const std::uint32_t c = colour(x, y);
      cairo_set_source_rgba(canvas, (c >> 16U & 255U) / 255.0, (c >> 8U & 255U) / 255.0,
                            (c & 255U) / 255.0, (c >> 24U) / 255.0);
      cairo_rectangle(canvas, x, y, 1, 1);
      cairo_fill(canvas);
    }
  }
  Bytes file;
  cairo_surface_write_to_png_stream(
      surface,
      [](void* to, const unsigned char* data, unsigned int length) {
        auto& bytes = *static_cast<Bytes*>(to);
        bytes.insert(bytes.end(), data, data + length);
        return CAIRO_STATUS_SUCCESS;
      },
      &file);
  cairo_destroy(canvas);
  cairo_surface_destroy(surface);
  return file;
}

/// The file `png` with this size in its header. The checksum of the header is right.
inline Bytes withSize(Bytes png, std::uint32_t width, std::uint32_t height) {
  for (unsigned i = 0; i < 4; ++i) {
    png[16 + i] = static_cast<std::uint8_t>(width >> (24 - 8 * i));
    png[20 + i] = static_cast<std::uint8_t>(height >> (24 - 8 * i));
  }
  const std::uint32_t sum = static_cast<std::uint32_t>(::crc32(0, png.data() + 12, 17));
  for (unsigned i = 0; i < 4; ++i) {
    png[29 + i] = static_cast<std::uint8_t>(sum >> (24 - 8 * i));
  }
  return png;
}

enum class PngKind { Grey1, Grey16, Palette, Rgb16, Interlaced };

/// A PNG file of this kind whose left half is black and whose right half is white.
inline Bytes pngFile(PngKind kind, unsigned width, unsigned height) {
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  Bytes file;
  png_set_write_fn(
      png, &file,
      [](png_structp from, png_bytep data, std::size_t size) {
        auto& bytes = *static_cast<Bytes*>(png_get_io_ptr(from));
        bytes.insert(bytes.end(), data, data + size);
      },
      nullptr);
  const bool isColour = kind == PngKind::Rgb16;
  const int depth = kind == PngKind::Grey1                              ? 1
                    : kind == PngKind::Grey16 || kind == PngKind::Rgb16 ? 16
                                                                        : 8;
  png_set_IHDR(png, info, width, height, depth,
               isColour                   ? PNG_COLOR_TYPE_RGB
               : kind == PngKind::Palette ? PNG_COLOR_TYPE_PALETTE
                                          : PNG_COLOR_TYPE_GRAY,
               kind == PngKind::Interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE,
               PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  const png_color colours[] = {{0, 0, 0}, {255, 255, 255}};
  if (kind == PngKind::Palette) {
    png_set_PLTE(png, info, colours, 2);
  }
  png_write_info(png, info);
  const std::size_t bits = static_cast<std::size_t>(depth) * (isColour ? 3 : 1);
  Bytes row(width * bits / 8);
  const auto middle = row.begin() + static_cast<std::ptrdiff_t>(row.size() / 2);
  std::fill(middle, row.end(), static_cast<std::uint8_t>(kind == PngKind::Palette ? 1 : 255));
  if (kind == PngKind::Grey1) {
    row = {0x00, 0x0f, 0xff};
  }
  std::vector<png_bytep> starts;
  for (unsigned y = 0; y < height; ++y) {
    starts.push_back(row.data());
  }
  png_write_image(png, starts.data());
  png_write_end(png, info);
  png_destroy_write_struct(&png, &info);
  return file;
}

/// A grey JPEG file. The left half of the first `blackRows` rows is black, all other pixels are
/// white.
inline Bytes jpegFile(unsigned width, unsigned height, unsigned blackRows) {
  jpeg_compress_struct info{};
  jpeg_error_mgr errors{};
  info.err = jpeg_std_error(&errors);
  jpeg_create_compress(&info);
  unsigned char* data = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&info, &data, &size);
  info.image_width = width;
  info.image_height = height;
  info.input_components = 1;
  info.in_color_space = JCS_GRAYSCALE;
  jpeg_set_defaults(&info);
  jpeg_start_compress(&info, TRUE);
  Bytes halfBlack(width / 2);
  halfBlack.resize(width, 255);
  Bytes white(width, 255);
  for (unsigned y = 0; y < height; ++y) {
    std::uint8_t* row = y < blackRows ? halfBlack.data() : white.data();
    jpeg_write_scanlines(&info, &row, 1);
  }
  jpeg_finish_compress(&info);
  jpeg_destroy_compress(&info);
  Bytes file(data, data + size);
  std::free(data);
  return file;
}

/// A grey JPEG file whose left half is black and whose right half is white.
inline Bytes jpegFile(unsigned width, unsigned height) {
  return jpegFile(width, height, height);
}

/// The Exif data of a camera with this orientation, from 1 to 8. The order of bytes is
/// little-endian or big-endian.
inline Bytes exif(std::uint8_t orientation, bool isLittle) {
  if (isLittle) {
    return {'E',  'x', 'i', 'f', 0, 0, 'I', 'I', 42,          0, 8, 0, 0, 0, 1, 0,
            0x12, 1,   3,   0,   1, 0, 0,   0,   orientation, 0, 0, 0, 0, 0, 0, 0};
  }
  return {'E', 'x',  'i', 'f', 0, 0, 'M', 'M', 0, 42,          0, 0, 0, 8, 0, 1,
          1,   0x12, 0,   3,   0, 0, 0,   1,   0, orientation, 0, 0, 0, 0, 0, 0};
}

/// The file `jpeg` with this Exif data inserted at its beginning.
inline Bytes withExif(Bytes jpeg, const Bytes& data) {
  Bytes marker = {0xff, 0xe1, 0, static_cast<std::uint8_t>(data.size() + 2)};
  marker.insert(marker.end(), data.begin(), data.end());
  jpeg.insert(jpeg.begin() + 2, marker.begin(), marker.end());
  return jpeg;
}

}  // namespace quordalvane::render
