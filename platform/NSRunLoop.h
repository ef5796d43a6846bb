#pragma once

#include <quordalvane/QuorExport.h>

namespace quordalvane {

class NSStream;

/// The event loop of one thread. Only that thread may run it.
class QUOR_EXPORT NSRunLoop {
 public:
  virtual ~NSRunLoop() = default;

  /// Runs the routines that are carried to this thread, and waits for more, until `seconds` from
  /// now on a steady clock. Zero or less runs the routines that wait, and returns.
  virtual void runUntilDate(double seconds) = 0;

  /// The same, but returns as soon as `awaited` is ready or its link is lost. It never returns
  /// later than `seconds` from now.
  virtual void runUntilDate(double seconds, NSStream& awaited) = 0;
};

}  // namespace quordalvane
