#pragma once

#include <nettle/sha2.h>

#include <array>
#include <cstdint>

#include "job/ByteView.h"

namespace quordalvane {

/// Computes the SHA-256 of bytes that are added in pieces.
class Sha256 {
 public:
  using Digest = std::array<std::uint8_t, SHA256_DIGEST_SIZE>;

  Sha256() { sha256_init(&state_); }

  void add(ByteView bytes) { sha256_update(&state_, bytes.size(), bytes.data()); }

  /// Returns the digest of all added bytes. Afterwards the object is as if newly created.
  Digest digest() {
    Digest result = {};
    sha256_digest(&state_, result.size(), result.data());
    return result;
  }

 private:
  sha256_ctx state_;
};

}  // namespace quordalvane
