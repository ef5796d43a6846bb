#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace quordalvane {

/// What the journal keeps of a job's data, which is nobody else's business.
struct Fingerprint {
  std::uint64_t bytes = 0;  ///< its length
  std::string sha256;       ///< its SHA-256, 32 bytes

  bool operator==(const Fingerprint&) const = default;
};

Fingerprint fingerprintOf(std::span<const std::uint8_t> data);

}  // namespace quordalvane
