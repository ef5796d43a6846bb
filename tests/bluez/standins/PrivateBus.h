#pragma once

#include <sys/types.h>

#include <string>

#include "tests/support/TemporaryFolder.h"

namespace quordalvane::test {

/// A message bus that only this test uses. It replaces the system's bus as long as this object
/// exists.
class PrivateBus {
 public:
  PrivateBus();
  ~PrivateBus();
  PrivateBus(const PrivateBus&) = delete;
  PrivateBus& operator=(const PrivateBus&) = delete;

  /// Ends the bus even if programs use it.
  void kill();

 private:
  TemporaryFolder folder_;
  pid_t daemon_ = -1;
};

}  // namespace quordalvane::test
