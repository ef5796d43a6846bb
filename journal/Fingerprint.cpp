#include "journal/Fingerprint.h"

#include "journal/Sha256.h"

namespace quordalvane {

Fingerprint fingerprintOf(ByteView data) {
  Sha256 hash;
  hash.add(data);
  const auto digest = hash.digest();
  return {data.size(), std::string(digest.begin(), digest.end())};
}

}  // namespace quordalvane
