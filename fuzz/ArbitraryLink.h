#pragma once

#include "fuzz/Input.h"
#include "tests/support/Script.h"

namespace quordalvane::fuzz {

/// Returns a link whose printer sends arbitrary replies, which the rest of the input lists in
/// pieces. The first byte of a piece selects the request that the piece answers, or none, and the
/// delay of the piece. The second byte is the length of the piece, up to 63. If two pieces answer
/// one request, the second piece answers the repeated request.
inline test::Script arbitraryLink(Input& input) {
  using test::bytes;
  static const Bytes requests[] = {
      bytes("1b 06 01"),          bytes("10 04 01"),          bytes("10 04 02"),
      bytes("10 04 04"),          bytes("1b 1d 03 01 00 00"), bytes("17 17"),
      bytes("1b 23 2a 0a 00"),    bytes("1d 49 41"),          bytes("1b 23 2c 31 0a 00"),
      bytes("1b 23 2c 32 0a 00"), test::ascii("AT*AILBA?\r"), test::ascii("AT*AMWS=10,0,0,0,1,0\r"),
  };
  test::Script script;
  script.lostAfterCalls = 600;
  while (!input.isEmpty()) {
    const std::uint8_t head = input.byte();
    const std::size_t request = head % 16;
    const double seconds = (head / 16) * 0.09;
    const std::uint8_t length = input.byte();
    const Bytes reply = input.bytes(length % 64);
    if (request < std::size(requests)) {
      script.whenAsked(requests[request], {{reply, seconds}});
    } else if (request == 15 && (length & 0x80) != 0) {
      script.isLost(seconds * length);
    } else {
      script.deliveries.push_back({reply, seconds * 4});
    }
  }
  return script;
}

}  // namespace quordalvane::fuzz
