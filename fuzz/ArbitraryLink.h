#pragma once

#include "fuzz/Input.h"
#include "tests/support/Script.h"

namespace quordalvane::fuzz {

/// Returns a link whose printer sends arbitrary replies. Uses all remaining bytes of `input` as a
/// list of replies. The first byte of a reply selects the delay of the reply and the request to
/// which the reply belongs. With some values the reply belongs to no request. The second byte
/// selects the length of the reply, up to 63 bytes; the bytes of the reply follow. If two replies
/// belong to the same request, the second is sent when this request is repeated. Instead of a
/// reply, an entry of the list can mean that the link is lost.
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
