#include "render/JpegPicture.h"

// The library's header uses names of <cstdio> without including it, so it has a place after that.
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

// The library reports by a call that must not return, and no exception may cross its frames.
[[noreturn]] void leave(j_common_ptr info) {
  std::longjmp(*static_cast<std::jmp_buf*>(info->client_data), 1);
}

void stayQuiet(j_common_ptr /*info*/) {}

[[noreturn]] void fail(jpeg_decompress_struct& info) {
  char text[JMSG_LENGTH_MAX] = {};
  info.err->format_message(reinterpret_cast<j_common_ptr>(&info), text);
  throw RenderError(std::string("the JPEG picture cannot be read: ") + text);
}

// The largest of the scales 1/1, 1/2, 1/4 and 1/8 that leaves the width that is wanted.
unsigned divisor(unsigned width, unsigned leastWidth) {
  unsigned scale = 8;
  while (scale > 1 && width / scale < leastWidth) {
    scale /= 2;
  }
  return scale;
}

// Each step runs between a setjmp and the library's return. So it holds no object with a
// destructor, and its result is false after an error.

bool readHeader(jpeg_decompress_struct& info, std::jmp_buf& failure, ByteView file) {
  if (setjmp(failure) != 0) {
    return false;
  }
  jpeg_create_decompress(&info);
  jpeg_mem_src(&info, file.data(), static_cast<unsigned long>(file.size()));
  jpeg_read_header(&info, TRUE);
  return true;
}

bool start(jpeg_decompress_struct& info, std::jmp_buf& failure, unsigned leastWidth) {
  if (setjmp(failure) != 0) {
    return false;
  }
  info.out_color_space = JCS_GRAYSCALE;
  info.scale_num = 1;
  info.scale_denom = divisor(info.image_width, leastWidth);
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
  if (!start(decoder_->info, decoder_->failure, leastWidth)) {
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

void JpegPicture::read(std::span<std::uint8_t> grey) {
  if (!readRow(decoder_->info, decoder_->failure, grey.data())) {
    fail(decoder_->info);
  }
  // The library only warns of a file that is cut short, and fills the rest with grey.
  if (decoder_->errors.num_warnings > 0) {
    fail(decoder_->info);
  }
}

}  // namespace quordalvane::render
