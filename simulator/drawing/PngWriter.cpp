#include "simulator/drawing/PngWriter.h"

#include <zlib.h>

#include <cstring>
#include <utility>

namespace quordalvane::simulator {
namespace {

constexpr std::size_t pieceSize = std::size_t{64} * 1024;

void addNumber(Bytes& bytes, std::uint32_t number) {
  for (const unsigned shift : {24U, 16U, 8U, 0U}) {
    bytes.push_back(static_cast<std::uint8_t>(number >> shift));
  }
}

}  // namespace

struct PngWriter::Stream {
  z_stream deflate{};
  bool works = false;
  Bytes piece = Bytes(pieceSize);
};

PngWriter::PngWriter(unsigned width, unsigned height, const Palette& palette)
    : stream_(std::make_unique<Stream>()), file_({0x89, 'P', 'N', 'G', 0x0d, 0x0a, 0x1a, 0x0a}) {
  // The lowest compression level: the picture of a receipt is mostly empty paper, so the other
  // levels cost more time than their smaller files are worth.
  stream_->works = deflateInit(&stream_->deflate, 1) == Z_OK;
  startPiece();
  Bytes header;
  addNumber(header, width);
  addNumber(header, height);
  const Bytes eightBitsOfAPalette = {8, 3, 0, 0, 0};
  header.insert(header.end(), eightBitsOfAPalette.begin(), eightBitsOfAPalette.end());
  chunk("IHDR", header);
  Bytes colours;
  for (const std::uint32_t colour : palette) {
    for (const unsigned shift : {16U, 8U, 0U}) {
      colours.push_back(static_cast<std::uint8_t>(colour >> shift));
    }
  }
  chunk("PLTE", colours);
}

PngWriter::~PngWriter() {
  deflateEnd(&stream_->deflate);
}

void PngWriter::chunk(const char* type, ByteView data) {
  addNumber(file_, static_cast<std::uint32_t>(data.size()));
  const std::size_t begin = file_.size();
  file_.insert(file_.end(), type, type + std::strlen(type));
  file_.insert(file_.end(), data.begin(), data.end());
  const auto sum = crc32(0, file_.data() + begin, static_cast<uInt>(file_.size() - begin));
  addNumber(file_, static_cast<std::uint32_t>(sum));
}

// Adds the compressed bytes to the file whenever a piece is full, and at the end of the data.
void PngWriter::compress(ByteView data, bool last) {
  z_stream& deflate = stream_->deflate;
  deflate.next_in = const_cast<Bytef*>(data.data());
  deflate.avail_in = static_cast<uInt>(data.size());
  bool isDone = !stream_->works;
  while (!isDone) {
    const int outcome = ::deflate(&deflate, last ? Z_FINISH : Z_NO_FLUSH);
    const bool isEnd = outcome == Z_STREAM_END;
    if (deflate.avail_out == 0 || isEnd) {
      chunk("IDAT", ByteView(stream_->piece).first(pieceSize - deflate.avail_out));
      startPiece();
    }
    isDone = last ? isEnd : deflate.avail_in == 0;
  }
}

void PngWriter::startPiece() {
  stream_->deflate.next_out = stream_->piece.data();
  stream_->deflate.avail_out = pieceSize;
}

void PngWriter::add(ByteView row) {
  constexpr std::uint8_t asItIs = 0;
  compress({&asItIs, 1}, false);
  compress(row, false);
}

Bytes PngWriter::finish() {
  compress({}, true);
  chunk("IEND", {});
  return stream_->works ? std::move(file_) : Bytes();
}

}  // namespace quordalvane::simulator
