#include "render/PngPicture.h"

#include <png.h>

#include <csetjmp>
#include <cstring>
#include <new>
#include <string>

#include "render/PictureSize.h"
#include "render/RenderError.h"

namespace quordalvane::render {
namespace {

constexpr std::size_t pixelBytes = 4;
constexpr std::size_t longestError = 127;

// The library reports an error by a call that must not return. An exception must not pass through
// the library, so this function jumps.
[[noreturn]] void leave(png_structp png, png_const_charp why) {
  char* const error = static_cast<char*>(png_get_error_ptr(png));
  std::strncpy(error, why, longestError);
  png_longjmp(png, 1);
}

void stayQuiet(png_structp /*png*/, png_const_charp /*why*/) {}

void readPiece(png_structp png, png_bytep data, std::size_t length) {
  ByteView& left = *static_cast<ByteView*>(png_get_io_ptr(png));
  if (left.size() < length) {
    png_error(png, "the file is incomplete");
  }
  std::memcpy(data, left.data(), length);
  left = left.subspan(length);
}

// Each step below begins with setjmp. An error in the library jumps back to it, and the step
// returns false. A step has no object with a destructor, because the jump would skip the
// destructor.

bool readHeader(png_structp png, png_infop info) {
  if (setjmp(png_jmpbuf(png)) != 0) {
    return false;
  }
  // The constructor checks the size itself, with a clearer error, so the limits of libpng are
  // lifted.
  png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
  png_read_info(png, info);
  return true;
}

// Converts every kind of picture to red, green, blue and alpha, one byte each. Sets `passes`, which
// is more than one for an interlaced picture.
bool start(png_structp png, png_infop info, int& passes) {
  if (setjmp(png_jmpbuf(png)) != 0) {
    return false;
  }
  png_set_expand(png);
  png_set_scale_16(png);
  png_set_gray_to_rgb(png);
  png_set_add_alpha(png, 0xff, PNG_FILLER_AFTER);
  passes = png_set_interlace_handling(png);
  png_read_update_info(png, info);
  return true;
}

bool readRows(png_structp png, std::uint8_t* pixels, std::size_t rowBytes, unsigned rows) {
  if (setjmp(png_jmpbuf(png)) != 0) {
    return false;
  }
  for (unsigned row = 0; row < rows; ++row) {
    png_read_row(png, pixels + row * rowBytes, nullptr);
  }
  return true;
}

bool readEnd(png_structp png) {
  if (setjmp(png_jmpbuf(png)) != 0) {
    return false;
  }
  png_read_end(png, nullptr);
  return true;
}

// The weights of red, green and blue in the brightness, in 256ths.
constexpr unsigned redWeight = 77;
constexpr unsigned greenWeight = 151;
constexpr unsigned blueWeight = 28;

std::uint8_t greyOf(const std::uint8_t* pixel) {
  const unsigned grey =
      (pixel[0] * redWeight + pixel[1] * greenWeight + pixel[2] * blueWeight) >> 8U;
  const unsigned alpha = pixel[3];
  return static_cast<std::uint8_t>((grey * alpha + 255U * (255U - alpha) + 127U) / 255U);
}

}  // namespace

struct PngPicture::Decoder {
  explicit Decoder(ByteView file)
      : left(file), png(png_create_read_struct(PNG_LIBPNG_VER_STRING, error, leave, stayQuiet)) {
    info = png == nullptr ? nullptr : png_create_info_struct(png);
    if (info == nullptr) {
      png_destroy_read_struct(&png, nullptr, nullptr);
      throw std::bad_alloc();
    }
    png_set_read_fn(png, &left, readPiece);
  }
  ~Decoder() { png_destroy_read_struct(&png, &info, nullptr); }
  Decoder(const Decoder&) = delete;
  Decoder& operator=(const Decoder&) = delete;

  void check(bool isDone) const {
    if (!isDone) {
      throw RenderError(std::string("the PNG picture cannot be read: ") + error);
    }
  }

  ByteView left;  // the rest of the file
  char error[longestError + 1] = {};
  png_structp png;
  png_infop info;
  int passes = 1;
};

PngPicture::PngPicture(ByteView file) : decoder_(std::make_unique<Decoder>(file)) {
  decoder_->check(readHeader(decoder_->png, decoder_->info));
  width_ = png_get_image_width(decoder_->png, decoder_->info);
  height_ = png_get_image_height(decoder_->png, decoder_->info);
  checkSize(width_, height_);
  decoder_->check(start(decoder_->png, decoder_->info, decoder_->passes));
}

PngPicture::~PngPicture() = default;

void PngPicture::read(std::span<std::uint8_t> grey) {
  const auto pixels = nextRow();
  for (std::size_t x = 0; x < width_; ++x) {
    grey[x] = greyOf(&pixels[x * pixelBytes]);
  }
  if (++row_ == height_) {
    decoder_->check(readEnd(decoder_->png));
  }
}

ByteView PngPicture::nextRow() {
  const std::size_t rowBytes = width_ * pixelBytes;
  const bool isWhole = decoder_->passes > 1;
  const unsigned rows = isWhole ? height_ : 1;
  if (row_ == 0) {
    pixels_.resize(rows * rowBytes);
  }
  for (int pass = 0; pass < decoder_->passes && (row_ == 0 || !isWhole); ++pass) {
    decoder_->check(readRows(decoder_->png, pixels_.data(), rowBytes, rows));
  }
  return ByteView(pixels_).subspan(isWhole ? row_ * rowBytes : 0, rowBytes);
}

}  // namespace quordalvane::render
