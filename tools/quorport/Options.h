#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "iphone-IOPort/enum.h"
#include "platform/ProofKind.h"
#include "tools/quorport/RenderOptions.h"

namespace quordalvane::tool {

struct StatusOptions {
  std::uint32_t level = 0;  ///< is only logged
  bool verbose = false;
};

struct PrintOptions {
  std::string file;                               ///< "-" is standard input
  std::optional<ProofKind> proof;                 ///< empty: as the device says
  std::optional<std::uint32_t> endTimeout;        ///< milliseconds
  std::optional<std::uint32_t> holdPrintTimeout;  ///< milliseconds
  std::optional<std::string> receipt;             ///< a file
  std::optional<std::string> job;                 ///< a name
  std::optional<std::string> journal;             ///< a file
  bool again = false;
  RenderOptions render;
};

struct JobsOptions {
  std::optional<std::string> journal;      ///< a file
  std::optional<std::string> forget;       ///< a name
  std::optional<std::uint32_t> olderThan;  ///< days
};

struct DoctorOptions {
  std::optional<std::string> bundle;  ///< a file that is not there yet
};

struct MonitorOptions {
  std::uint32_t interval = 1000;  ///< milliseconds between two looks
  std::uint32_t count = 0;        ///< of looks; 0 is without end
};

/// How the output of a virtual printer is divided into receipts.
enum class ReceiptPer { Cut, Job, Connection };

/// How a virtual printer treats hosts that connect while another is connected.
enum class HostRule {
  One,     ///< they wait until it has left
  Turns,   ///< they are connected, and print between two of its jobs
  Refuse,  ///< they are turned away
};

struct SimulateOptions {
  std::vector<std::string> listen;  ///< a printer each
  HostRule hosts = HostRule::One;
  std::vector<std::string> settings;    ///< key=value each
  std::optional<std::string> receipts;  ///< a folder
  ReceiptPer per = ReceiptPer::Job;
  bool strict = false;
  std::optional<std::string> control;
  std::optional<std::string> web;  ///< HOST:PORT or PORT
};

/// The user's options on the command line. The members of other commands than the one that was
/// named hold their defaults.
struct Options {
  std::vector<std::string> devices;
  std::string devicesFrom = "--device";  ///< the place where they were named, for people
  std::string portName = "BT:";
  std::string settings;
  std::uint32_t timeout = 10000;  ///< milliseconds
  ZKEmulation emulation = ZKEmulationQuorLine;
  std::optional<std::string> log;  ///< a file; "-" is standard error
  std::set<std::int32_t> logLevels = {0};
  bool json = false;

  StatusOptions status;
  PrintOptions print;
  JobsOptions jobs;
  DoctorOptions doctor;
  MonitorOptions monitor;
  SimulateOptions simulate;
};

}  // namespace quordalvane::tool
