#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "render/Output.h"

namespace quordalvane::render {

using Bytes = std::vector<std::uint8_t>;

/// The bytes that were passed on, call by call.
struct Job {
  std::vector<Bytes> pieces;

  Output output() {
    return [this](ByteView bytes) { pieces.emplace_back(bytes.begin(), bytes.end()); };
  }

  Bytes all() const {
    Bytes bytes;
    for (const Bytes& piece : pieces) {
      bytes.insert(bytes.end(), piece.begin(), piece.end());
    }
    return bytes;
  }
};

inline Bytes ascii(const std::string& text) {
  return {text.begin(), text.end()};
}

}  // namespace quordalvane::render
