#pragma once

#include <quordalvane/QuorExport.h>

namespace quordalvane {

class NSStream;

/// The event loop of one thread. Only that thread may run it.
class QUOR_EXPORT NSRunLoop {
 public:
  virtual ~NSRunLoop() = default;

  /// Runs the routines that other threads pass to this thread, and waits for more routines, until
  /// `seconds` have passed on a steady clock. With zero or less the function runs only the routines
  /// that were passed already, and returns.
  virtual void runUntilDate(double seconds) = 0;

  /// Works as the function above, but also returns as soon as `awaited` has bytes or space, or its
  /// link is lost.
  virtual void runUntilDate(double seconds, NSStream& awaited) = 0;
};

}  // namespace quordalvane
