#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace quordalvane {

/// The journal keeps this of a job's data, which itself is private.
struct Fingerprint {
  std::uint64_t bytes = 0;  ///< its length
  std::string sha256;       ///< its SHA-256, 32 bytes

  bool operator==(const Fingerprint&) const = default;
};

Fingerprint fingerprintOf(std::span<const std::uint8_t> data);

}  // namespace quordalvane
