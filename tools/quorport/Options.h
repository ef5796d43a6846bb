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
  std::uint32_t level = 0;  ///< the level of the status request; only the log shows it
  bool verbose = false;
};

struct PrintOptions {
  std::string file;                               ///< a path; "-" is standard input
  std::optional<ProofKind> proof;                 ///< if empty, the device's key `proof` decides
  std::optional<std::uint32_t> endTimeout;        ///< milliseconds
  std::optional<std::uint32_t> holdPrintTimeout;  ///< milliseconds
  std::optional<std::string> receipt;             ///< the path of the receipt file
  std::optional<std::string> job;                 ///< the job's name
  std::optional<std::string> journal;             ///< the path of the journal
  bool again = false;
  RenderOptions render;
};

struct JobsOptions {
  std::optional<std::string> journal;      ///< the path of the journal
  std::optional<std::string> forget;       ///< the name of a job
  std::optional<std::uint32_t> olderThan;  ///< the age limit in days
};

struct DoctorOptions {
  std::optional<std::string> bundle;  ///< the path of a new file, which must not exist yet
};

struct MonitorOptions {
  std::uint32_t interval = 1000;  ///< the pause between two status requests, in milliseconds
  std::uint32_t count = 0;        ///< the number of status requests; 0 means no limit
};

/// How the output of a virtual printer is divided into receipts.
enum class ReceiptPer { Cut, Job, Connection };

/// How a virtual printer treats a host that connects while another host is connected.
enum class HostRule {
  One,     ///< the new host waits until the connected host has left
  Turns,   ///< hosts remain connected, and their jobs take turns
  Refuse,  ///< the new host is disconnected
};

struct SimulateOptions {
  std::vector<std::string> listen;  ///< the address of each printer
  HostRule hosts = HostRule::One;
  std::vector<std::string> settings;    ///< each in the form key=value
  std::optional<std::string> receipts;  ///< the path of the folder for receipts
  ReceiptPer per = ReceiptPer::Job;
  bool strict = false;
  std::optional<std::string> control;
  std::optional<std::string> web;  ///< HOST:PORT or PORT
};

/// The user's options on the command line. The options of all commands except the chosen one have
/// their default values.
struct Options {
  std::vector<std::string> devices;
  std::string devicesFrom = "--device";  ///< the option or the variable that named the devices
  std::string portName = "BT:";
  std::string settings;
  std::uint32_t timeout = 10000;  ///< milliseconds
  ZKEmulation emulation = ZKEmulationQuorLine;
  std::optional<std::string> log;  ///< the path of a file; "-" is standard error
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
