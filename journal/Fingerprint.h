#pragma once

#include <cstdint>
#include <string>

#include "job/ByteView.h"

namespace quordalvane {

/// Identifies the data of a job. The journal keeps only the fingerprint, because the data itself is
/// private.
struct Fingerprint {
  std::uint64_t bytes = 0;  ///< the length of the data
  std::string sha256;       ///< the SHA-256 of the data, 32 bytes

  bool operator==(const Fingerprint&) const = default;
};

Fingerprint fingerprintOf(ByteView data);

}  // namespace quordalvane
