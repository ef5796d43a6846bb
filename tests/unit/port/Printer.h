#pragma once

#include <initializer_list>

#include "tests/model/Scenario.h"

// The questions to printers and their answers, for the tests of the port.

namespace quordalvane::test {

inline const Bytes lineRequest = bytes("1b 2a 72 42 1b 1d 03 04 00 00 1b 06 01");
inline const Bytes shortRequest = bytes("1b 06 01");
inline const Bytes lineCounterReset = bytes("1b 1e 45 00");
inline const Bytes lineEtb = bytes("17 17");
inline const Bytes escPosCounterReset = bytes("1b 1d 03 02 00 00");
inline const Bytes dataCancel = bytes("1b 1d 03 03 00 00");
inline const Bytes dataCancelEnd = bytes("1b 1d 03 04 00 00");
inline const Bytes escPosEtb = bytes("1b 1d 03 01 00 00");
inline const Bytes drawerQuery = bytes("10 04 01");
inline const Bytes coverQuery = bytes("10 04 02");
inline const Bytes paperQuery = bytes("10 04 04");

/// The places of some flags in a line-mode status.
enum FlagPlace : std::size_t { coverOpenFlag = 0, offlineFlag = 1, paperPresentFlag = 20 };

/// A line-mode status with these flags and this counter.
inline Bytes lineStatus(std::initializer_list<std::size_t> flagPlaces = {}, unsigned counter = 0) {
  Bytes block = bytes("89 01 00 00 00 00 00 00 05");
  for (const std::size_t place : flagPlaces) {
    block[2 + place / 8] |= static_cast<std::uint8_t>(1U << place % 8);
  }
  block[6] = static_cast<std::uint8_t>(counter);
  return block;
}

/// The whole answer arrives at once, without a delay.
inline Reply whole(Bytes reply) {
  return {{std::move(reply)}};
}

/// A line-mode printer that answers every status request in this way.
inline Scenario lineModePrinter(const Bytes& status = lineStatus(), std::uint32_t timeout = 10000) {
  Scenario scenario = Scenario::in(lineMode, timeout);
  scenario.script.wheneverAsked(lineRequest, whole(status));
  return scenario;
}

/// An ESC/POS printer that answers each of the three queries with one byte.
inline Scenario escPosPrinter(const char* drawer = "12", const char* cover = "12",
                              const char* paper = "12", std::uint32_t timeout = 10000) {
  Scenario scenario = Scenario::in(escPos, timeout);
  scenario.script.wheneverAsked(drawerQuery, whole(bytes(drawer)))
      .wheneverAsked(coverQuery, whole(bytes(cover)))
      .wheneverAsked(paperQuery, whole(bytes(paper)));
  return scenario;
}

}  // namespace quordalvane::test
