#pragma once

#include <sys/types.h>

#include <string>

#include "tests/support/TemporaryFolder.h"

namespace quordalvane::test {

/// A message bus of this test's own, which stands for the system's as long as this lives.
class PrivateBus {
 public:
  PrivateBus();
  ~PrivateBus();
  PrivateBus(const PrivateBus&) = delete;
  PrivateBus& operator=(const PrivateBus&) = delete;

  /// Ends the bus under whoever uses it.
  void kill();

 private:
  TemporaryFolder folder_;
  pid_t daemon_ = -1;
};

}  // namespace quordalvane::test
