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

/// The objects that a command uses besides its options.
struct Surroundings {
  Streams streams;
  std::shared_ptr<Interruption> interruption;
};

// Each command does its task and returns its report. A command that fails throws CommandFailure
// with its exit code. A command that is interrupted throws Interrupted. Any other std::exception
// means that an exchange with the printer failed.

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

/// Returns the report of a print job that was refused before it began, with every key that `print`
/// reports. `bytesTotal` is the size of the job, 0 if it is unknown. `job` is the name of the job,
/// empty if it has none.
Report refusedJob(ExitCode code, const std::string& error, std::uint64_t bytesTotal,
                  const std::optional<std::string>& job);

Report doctor(const Options& options, const Surroundings& surroundings);

// These commands run until they are stopped, and write to the streams while they run.

Report monitor(const Options& options, const Surroundings& surroundings);
Report simulate(const Options& options, const Surroundings& surroundings);

enum class CommandKind {
  Question,  ///< a query: if its answer is lost, the user may ask again
  Printing,  ///< a print job: if its report is lost, a second run may print the job twice
  Service,   ///< a server: it handles the signals itself
};

struct Command {
  std::string_view name;
  std::string_view help;
  Report (*run)(const Options& options, const Surroundings& surroundings);
  void (*addOptions)(CLI::App& app,
                     Options& options) = nullptr;  ///< null if the command has no own options
  CommandKind kind = CommandKind::Question;
};

/// Returns all commands, in the order in which --help lists them.
std::span<const Command> everyCommand();

/// Returns the command of this name; null if there is no such command.
const Command* commandNamed(std::string_view name);

}  // namespace quordalvane::tool
