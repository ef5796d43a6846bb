#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "tools/quorport/ExitCode.h"
#include "tools/quorport/Interruption.h"
#include "tools/quorport/Options.h"
#include "tools/quorport/Streams.h"

namespace CLI {
class App;
}

namespace quordalvane::tool {

struct Report;

/// The surroundings of a command, besides its options.
struct Surroundings {
  Streams streams;
  std::shared_ptr<Interruption> interruption;
};

// Each command does its work and returns the report of it. An exception ends the command: a
// CommandFailure with its exit code, Interrupted, and any other std::exception as a failed
// exchange.

Report find(const Options& options, const Surroundings& surroundings);
Report list(const Options& options, const Surroundings& surroundings);
Report status(const Options& options, const Surroundings& surroundings);
Report online(const Options& options, const Surroundings& surroundings);
Report print(const Options& options, const Surroundings& surroundings);
Report jobs(const Options& options, const Surroundings& surroundings);
Report cancel(const Options& options, const Surroundings& surroundings);
Report firmware(const Options& options, const Surroundings& surroundings);
Report dipswitch(const Options& options, const Surroundings& surroundings);
Report buttonSecurity(const Options& options, const Surroundings& surroundings);
Report disconnect(const Options& options, const Surroundings& surroundings);

/// The answer of a print job that never began: refused, with every key of an answer of `print`.
/// `bytesTotal` is the size of the job, 0 if it is not known; `job` its name, null without one.
Report refusedJob(ExitCode code, const std::string& error, std::uint64_t bytesTotal,
                  const std::optional<std::string>& job);

Report doctor(const Options& options, const Surroundings& surroundings);

// These run until they are stopped, and write their output to the streams meanwhile.

Report monitor(const Options& options, const Surroundings& surroundings);
Report simulate(const Options& options, const Surroundings& surroundings);

enum class CommandKind {
  Question,  ///< whoever lost its answer may ask again
  Printing,  ///< a report that was lost must not make anyone print again
  Service,   ///< handles the signals itself
};

struct Command {
  std::string_view name;
  std::string_view help;
  Report (*run)(const Options& options, const Surroundings& surroundings);
  void (*addOptions)(CLI::App& app,
                     Options& options) = nullptr;  ///< null: it has no options of its own
  CommandKind kind = CommandKind::Question;
};

/// All commands, in the order of the help.
std::span<const Command> everyCommand();

/// The command of this name; null if there is none.
const Command* commandNamed(std::string_view name);

}  // namespace quordalvane::tool
