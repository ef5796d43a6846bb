#pragma once

#include <atomic>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "simulator/PrinterBuilder.h"

namespace quordalvane::test {

/// A virtual printer at the other end of a socket, served by a thread of its own in real time.
class ServedPrinter {
 public:
  explicit ServedPrinter(simulator::PrinterBuilder builder = {});
  ~ServedPrinter();
  ServedPrinter(const ServedPrinter&) = delete;
  ServedPrinter& operator=(const ServedPrinter&) = delete;

  /// Returns the host's end of a new connection; the caller owns it. The printer ends the previous
  /// connection.
  int connect();

  /// The print data that it has printed so far.
  std::vector<std::uint8_t> printed();

 private:
  void serve(int number);
  void hangUp();

  const simulator::Faults faults_;
  std::mutex mutex_;  // guards the printer
  simulator::VirtualPrinter printer_;
  std::atomic<bool> isStopped_ = false;
  std::thread server_;
};

}  // namespace quordalvane::test
