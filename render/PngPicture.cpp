#include "render/PngPicture.h"

#include <cairo.h>

#include <algorithm>
#include <cstring>
#include <string>

#include "render/PictureSize.h"
#include "render/RenderError.h"

namespace quordalvane::render {
namespace {

// The drawing library's own limit on the sides of a picture.
constexpr std::uint64_t longestSide = 32767;

// The first chunk is the header, with the size after its length and name.
constexpr std::size_t widthAt = 16;
constexpr std::size_t heightAt = 20;

std::uint64_t bigEndian(ByteView file, std::size_t at) {
  if (file.size() < at + 4) {
    throw RenderError("the PNG picture is cut short");
  }
  std::uint64_t value = 0;
  for (const std::uint8_t byte : file.subspan(at, 4)) {
    value = value << 8U | byte;
  }
  return value;
}

void checkHeader(ByteView file) {
  const std::uint64_t width = bigEndian(file, widthAt);
  const std::uint64_t height = bigEndian(file, heightAt);
  checkSize(width, height);
  if (std::max(width, height) > longestSide) {
    throw RenderError("the PNG picture has a side of more than " + std::to_string(longestSide) +
                      " pixels");
  }
}

cairo_status_t readPiece(void* closure, unsigned char* data, unsigned int length) {
  ByteView& left = *static_cast<ByteView*>(closure);
  if (left.size() < length) {
    return CAIRO_STATUS_READ_ERROR;
  }
  std::memcpy(data, left.data(), length);
  left = left.subspan(length);
  return CAIRO_STATUS_SUCCESS;
}

// Weights of red, green and blue in the brightness, in 256ths.
constexpr unsigned redWeight = 77;
constexpr unsigned greenWeight = 151;
constexpr unsigned blueWeight = 28;

// The colours are multiplied by the alpha already; the rest of the pixel is the white below.
std::uint8_t greyOf(std::uint32_t pixel, bool hasAlpha) {
  const std::uint32_t grey = ((pixel >> 16U & 0xffU) * redWeight +
                              (pixel >> 8U & 0xffU) * greenWeight + (pixel & 0xffU) * blueWeight) >>
                             8U;
  const std::uint32_t below = hasAlpha ? 0xffU - (pixel >> 24U) : 0;
  return static_cast<std::uint8_t>(std::min(grey + below, 0xffU));
}

}  // namespace

struct PngPicture::Surface {
  explicit Surface(ByteView file) : handle(open(file)) {}
  ~Surface() { cairo_surface_destroy(handle); }
  Surface(const Surface&) = delete;
  Surface& operator=(const Surface&) = delete;

  static cairo_surface_t* open(ByteView file) {
    return cairo_image_surface_create_from_png_stream(readPiece, &file);
  }

  cairo_surface_t* handle;
};

PngPicture::PngPicture(ByteView file) {
  checkHeader(file);
  surface_ = std::make_unique<Surface>(file);
  const cairo_status_t status = cairo_surface_status(surface_->handle);
  const cairo_format_t format = cairo_image_surface_get_format(surface_->handle);
  if (status != CAIRO_STATUS_SUCCESS) {
    throw RenderError(std::string("the PNG picture cannot be read: ") +
                      cairo_status_to_string(status));
  }
  if (format != CAIRO_FORMAT_ARGB32 && format != CAIRO_FORMAT_RGB24) {
    throw RenderError("the PNG picture has more than 8 bits a colour: save it with 8");
  }
}

PngPicture::~PngPicture() = default;

unsigned PngPicture::width() const {
  return static_cast<unsigned>(cairo_image_surface_get_width(surface_->handle));
}

unsigned PngPicture::height() const {
  return static_cast<unsigned>(cairo_image_surface_get_height(surface_->handle));
}

void PngPicture::read(std::span<std::uint8_t> grey) {
  const auto stride = static_cast<std::size_t>(cairo_image_surface_get_stride(surface_->handle));
  const unsigned char* const row = cairo_image_surface_get_data(surface_->handle) + row_ * stride;
  const bool hasAlpha = cairo_image_surface_get_format(surface_->handle) == CAIRO_FORMAT_ARGB32;
  for (std::size_t x = 0; x < width(); ++x) {
    std::uint32_t pixel = 0;
    std::memcpy(&pixel, row + x * sizeof pixel, sizeof pixel);
    grey[x] = greyOf(pixel, hasAlpha);
  }
  ++row_;
}

}  // namespace quordalvane::render
