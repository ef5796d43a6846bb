#pragma once

#include <cstdint>

namespace quordalvane {

/// The command system that a port speaks with its printer.
enum ZKEmulation : std::int32_t {
  ZKEmulationUnknown = 0,   ///< unknown: every query of the status fails
  ZKEmulationQuorLine = 1,  ///< the maker's own command set, called line mode
  ZKEmulationESCPOS = 2,    ///< the common command set of receipt printers
};

}  // namespace quordalvane
