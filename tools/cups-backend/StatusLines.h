#pragma once

#include <mutex>
#include <string>
#include <string_view>

#include "tools/cups-backend/StateReasons.h"

namespace quordalvane::cups {

/// Writes the back end's reports to the scheduler, line by line, on standard error. If nobody reads
/// standard error any more, the lines are lost. May be used from any thread.
class StatusLines {
 public:
  /// `standing` lists the reasons that the queue's printer has now, separated by commas or blanks.
  /// A reason from an earlier back end remains until `setReasons` is called for the first time.
  explicit StatusLines(std::string_view standing, int descriptor = 2);

  /// Shows `text` beside the queue, in place of the text shown before. Does nothing if `text` is
  /// shown already.
  void inform(const std::string& text);

  /// Writes an error, shown beside the queue and in the scheduler's log.
  void complain(const std::string& text);

  /// Writes to the scheduler's log only.
  void note(const std::string& text);

  /// Reports that page `number` has been confirmed, in `copies` copies.
  void count(unsigned number, unsigned copies);

  /// Sets these reasons for the printer, and removes all others that this back end can set.
  void setReasons(const StateReasons& reasons);

  /// Stops the queue, which keeps its jobs. Nothing may be written after this call.
  void stopQueue();

 private:
  void write(std::string_view kind, const std::string& text);

  std::mutex mutex_;  // guards the members below
  const int descriptor_;
  StateReasons standing_;
  std::string informed_;
};

}  // namespace quordalvane::cups
