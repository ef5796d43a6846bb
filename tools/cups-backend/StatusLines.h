#pragma once

#include <mutex>
#include <string>
#include <string_view>

#include "tools/cups-backend/StateReasons.h"

namespace quordalvane::cups {

/// The reports of the back end to the scheduler, line by line, on its standard error. Nobody may
/// listen any more: a line that is not taken is lost. Any thread.
class StatusLines {
 public:
  /// `standing` are the reasons of the queue's printer, joined by commas or blanks: those of a back
  /// end that has ended stand until somebody takes them away, and the first `setReasons` does.
  explicit StatusLines(std::string_view standing, int descriptor = 2);

  /// The one line that people see beside the queue; a text that is there already is not repeated.
  void inform(const std::string& text);

  /// For the queue and the log of errors.
  void complain(const std::string& text);

  /// For the log alone.
  void note(const std::string& text);

  /// Page number `number` has been confirmed, `copies` times.
  void count(unsigned number, unsigned copies);

  /// The printer's state is this, and nothing else of what this back end may say.
  void setReasons(const StateReasons& reasons);

  /// Stops the queue; its jobs are kept. To be written last.
  void stopQueue();

 private:
  void write(std::string_view kind, const std::string& text);

  std::mutex mutex_;  // guards all that follows
  const int descriptor_;
  StateReasons standing_;
  std::string informed_;
};

}  // namespace quordalvane::cups
