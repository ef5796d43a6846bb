#pragma once

#include <chrono>
#include <cstdint>
#include <iosfwd>
#include <random>
#include <string>
#include <vector>

#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "platform/ProofKind.h"
#include "simulator/PrinterState.h"

namespace quordalvane::simulation {

/// A change of a flag of the printer during the run.
struct Turn {
  std::chrono::milliseconds after;
  std::string flag;
  bool value;
};

/// One simulated job, all of it decided by its seed.
struct Case {
  std::uint64_t seed = 0;
  ZKEmulation emulation = ZKEmulationQuorLine;
  std::uint32_t timeoutMillis = 2000;
  std::uint32_t endTimeoutMillis = 5000;
  ProofKind proof = ProofKind::Block;
  std::string portSettings;
  std::vector<std::pair<std::string, std::string>> printer;  // settings by name
  std::vector<std::pair<std::string, std::string>> faults;
  std::vector<Turn> turns;
  ByteBuffer data;     // may contain commands that the port itself sends to learn the job's result
  ByteBuffer onPaper;  // the data without such commands
  bool dataMakesSigns = false;  // whether the data contains such a command
};

Case makeCase(std::uint64_t seed);

std::ostream& operator<<(std::ostream& out, const Case& given);

}  // namespace quordalvane::simulation
