#pragma once

#include <cairo.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>

#include <jpeglib.h>

#include "tests/unit/render/Job.h"

namespace quordalvane::render {

/// A PNG file of so many pixels, each 0xAARRGGBB as `colour` says, not multiplied by the alpha.
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

/// A grey JPEG file whose left half is black and whose right half is white.
inline Bytes jpegFile(unsigned width, unsigned height) {
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
  Bytes row(width);
  for (unsigned x = width / 2; x < width; ++x) {
    row[x] = 255;
  }
  std::uint8_t* rows = row.data();
  for (unsigned y = 0; y < height; ++y) {
    jpeg_write_scanlines(&info, &rows, 1);
  }
  jpeg_finish_compress(&info);
  jpeg_destroy_compress(&info);
  Bytes file(data, data + size);
  std::free(data);
  return file;
}

}  // namespace quordalvane::render
