#pragma once

#include <mutex>
#include <string>
#include <string_view>

#include "tools/cups-backend/StateReasons.h"

namespace quordalvane::cups {

/// The reports of the back end to the scheduler, line by line, on its standard error. If nobody
/// reads them any more, a line is lost. Any thread.
class StatusLines {
 public:
  /// `standing` are the reasons that the queue's printer has now, joined by commas or blanks. Those
  /// of an earlier back end remain until somebody removes them; the first `setReasons` does.
  explicit StatusLines(std::string_view standing, int descriptor = 2);

  /// The one line that people see beside the queue; a text that is there already is not repeated.
  void inform(const std::string& text);

  /// For the queue and the log of errors.
  void complain(const std::string& text);

  /// For the log alone.
  void note(const std::string& text);

  /// Page number `number` has been confirmed, `copies` times.
  void count(unsigned number, unsigned copies);

  /// Gives the printer these reasons, and removes all others that this back end may set.
  void setReasons(const StateReasons& reasons);

  /// Stops the queue; its jobs are kept. To be written last.
  void stopQueue();

 private:
  void write(std::string_view kind, const std::string& text);

  std::mutex mutex_;  // guards the members below
  const int descriptor_;
  StateReasons standing_;
  std::string informed_;
};

}  // namespace quordalvane::cups
