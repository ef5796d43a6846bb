#include "render/JpegPicture.h"

// The library's header uses names of <cstdio> without including it, so <cstdio> must precede it.
#include <cstdio>
//
#include <jpeglib.h>

#include <csetjmp>
#include <string>

#include "render/PictureSize.h"
#include "render/RenderError.h"

namespace quordalvane::render {

struct JpegPicture::Decoder {
  Decoder() = default;
  ~Decoder() { jpeg_destroy_decompress(&info); }
  Decoder(const Decoder&) = delete;
  Decoder& operator=(const Decoder&) = delete;

  jpeg_decompress_struct info{};
  jpeg_error_mgr errors{};
  std::jmp_buf failure{};
};

namespace {

// The library reports an error by a call that must not return. An exception must not pass through
// the library, so this function jumps.
[[noreturn]] void leave(j_common_ptr info) {
  std::longjmp(*static_cast<std::jmp_buf*>(info->client_data), 1);
}

void stayQuiet(j_common_ptr /*info*/) {}

[[noreturn]] void fail(jpeg_decompress_struct& info) {
  char text[JMSG_LENGTH_MAX] = {};
  info.err->format_message(reinterpret_cast<j_common_ptr>(&info), text);
  throw RenderError(std::string("the JPEG picture cannot be read: ") + text);
}

// The library can divide the size of the picture by 1, 2, 4 or 8. Returns the largest of these
// divisors for which the picture is still at least `leastWidth` wide; 1 if there is none.
unsigned divisor(unsigned width, unsigned leastWidth) {
  unsigned scale = 8;
  while (scale > 1 && width / scale < leastWidth) {
    scale /= 2;
  }
  return scale;
}

constexpr int exifMarker = JPEG_APP0 + 1;
constexpr unsigned longestMarker = 65535;

// Each step below begins with setjmp. An error in the library jumps back to it, and the step
// returns false. A step has no object with a destructor, because the jump would skip the
// destructor.

bool readHeader(jpeg_decompress_struct& info, std::jmp_buf& failure, ByteView file) {
  if (setjmp(failure) != 0) {
    return false;
  }
  jpeg_create_decompress(&info);
  jpeg_mem_src(&info, file.data(), static_cast<unsigned long>(file.size()));
  jpeg_save_markers(&info, exifMarker, longestMarker);
  jpeg_read_header(&info, TRUE);
  return true;
}

bool start(jpeg_decompress_struct& info, std::jmp_buf& failure, unsigned scale) {
  if (setjmp(failure) != 0) {
    return false;
  }
  info.out_color_space = JCS_GRAYSCALE;
  info.scale_num = 1;
  info.scale_denom = scale;
  jpeg_start_decompress(&info);
  return true;
}

bool readRow(jpeg_decompress_struct& info, std::jmp_buf& failure, std::uint8_t* row) {
  if (setjmp(failure) != 0) {
    return false;
  }
  return jpeg_read_scanlines(&info, &row, 1) == 1;
}

}  // namespace

JpegPicture::JpegPicture(ByteView file, unsigned leastWidth)
    : decoder_(std::make_unique<Decoder>()) {
  decoder_->info.err = jpeg_std_error(&decoder_->errors);
  decoder_->errors.error_exit = leave;
  decoder_->errors.output_message = stayQuiet;
  decoder_->info.client_data = &decoder_->failure;
  if (!readHeader(decoder_->info, decoder_->failure, file)) {
    fail(decoder_->info);
  }
  checkSize(decoder_->info.image_width, decoder_->info.image_height);
  const jpeg_decompress_struct& info = decoder_->info;
  const unsigned across = orientation().isTransposed ? info.image_height : info.image_width;
  if (!start(decoder_->info, decoder_->failure, divisor(across, leastWidth))) {
    fail(decoder_->info);
  }
}

JpegPicture::~JpegPicture() = default;

unsigned JpegPicture::width() const {
  return decoder_->info.output_width;
}

unsigned JpegPicture::height() const {
  return decoder_->info.output_height;
}

Orientation JpegPicture::orientation() const {
  Orientation found;
  const jpeg_marker_struct* marker = decoder_->info.marker_list;
  for (; marker != nullptr && found.isUpright(); marker = marker->next) {
    found = orientationIn({marker->data, marker->data_length});
  }
  return found;
}

void JpegPicture::read(std::span<std::uint8_t> grey) {
  if (!readRow(decoder_->info, decoder_->failure, grey.data())) {
    fail(decoder_->info);
  }
  // If the file is incomplete, the library only warns, and fills the rest with grey.
  if (decoder_->errors.num_warnings > 0) {
    fail(decoder_->info);
  }
}

}  // namespace quordalvane::render
