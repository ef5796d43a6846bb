#pragma once

namespace quordalvane::tool {

/// The meaning of the command's exit status; scripts rely on it.
enum class ExitCode : int {
  Done = 0,
  ExchangeFailed = 1,
  Usage = 2,
  NoAccessory = 3,  ///< no device matched the port name, or the device could not be opened
  NotReady = 4,     ///< the printer is off line, has paper in its exit or is in use
  LinkLost = 5,
  Unconfirmed = 6,
  NoJournal = 7,      ///< the journal of jobs cannot be used, and nothing was sent
  Interrupted = 130,  ///< ended by SIGINT; any other signal gives 128 + its number
};

/// Returns the exit status of a command that a signal ended, as shells report it.
constexpr ExitCode codeOfSignal(int signal) {
  return static_cast<ExitCode>(128 + signal);
}

}  // namespace quordalvane::tool
