#include "c-interface/Buffers.h"

#include <cstring>

namespace quordalvane::c {
namespace {

void copy(const void* source, std::size_t size, std::size_t told, const Buffer& buffer) {
  usable(buffer);
  if (buffer.length != nullptr) {
    *buffer.length = told;
  }
  if (size > buffer.capacity) {
    throw CallFailure(QUOR_BUFFER_TOO_SMALL, "the buffer takes " + std::to_string(buffer.capacity) +
                                                 " bytes; " + std::to_string(size) + " are needed");
  }
  if (size > 0) {
    std::memcpy(buffer.bytes, source, size);
  }
}

}  // namespace

const Buffer& usable(const Buffer& buffer) {
  if (buffer.capacity > 0) {
    given(static_cast<char*>(buffer.bytes), "the buffer");
  }
  return buffer;
}

void copyBytes(ByteView bytes, const Buffer& buffer) {
  copy(bytes.data(), bytes.size(), bytes.size(), buffer);
}

QuorCode copyText(const std::optional<std::string>& text, const Buffer& buffer) {
  if (!text) {
    copy(nullptr, 0, 0, buffer);
    return QUOR_NONE;
  }
  copy(text->c_str(), text->size() + 1, text->size(), buffer);
  return QUOR_OK;
}

std::vector<std::uint8_t> copyOf(const void* bytes, std::size_t size) {
  if (size == 0) {
    return {};
  }
  const auto* const first = &given(static_cast<const std::uint8_t*>(bytes), "the data");
  return {first, first + size};
}

}  // namespace quordalvane::c
