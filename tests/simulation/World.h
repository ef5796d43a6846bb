#pragma once

#include <memory>
#include <string>

#include "job/PrintJob.h"
#include "tests/simulation/Case.h"
#include "tests/support/Fault.h"
#include "tests/support/FaultyAccessory.h"
#include "tests/support/Trace.h"
#include "tests/support/VirtualPlatform.h"

namespace quordalvane::simulation {

/// Counts how many bytes of a job the link takes, and changes nothing.
class Witness : public test::Fault {
 public:
  explicit Witness(const ByteBuffer& data) : Fault("none"), data_(data) {}

  bool befalls(test::PlatformCall call) const override { return call == test::PlatformCall::Write; }
  std::int64_t write(NSOutputStream& next, const std::uint8_t* buffer, std::size_t count) override;

  /// How many bytes of the job the link has taken. The count may be wrong if the job's data
  /// contains a command that the port itself sends to learn the job's result.
  std::size_t taken() const { return taken_; }

  /// Whether a write has failed.
  bool sawFailure() const { return sawFailure_; }

 private:
  const ByteBuffer& data_;
  std::size_t taken_ = 0;
  bool sawFailure_ = false;
};

/// A host and its virtual printer, with all faults of a case.
class World {
 public:
  explicit World(const Case& given);

  /// Prints the case's job.
  PrintResult printJob();

  /// `openPort` opens the port. `printOnOpenPort` prints a job on it and leaves it open, so late
  /// answers to one job may arrive during the next job.
  /// @{
  void openPort();
  PrintResult printOnOpenPort(const ByteBuffer& data);
  /// @}

  /// Lets another host send `data` and disconnect before the printer has printed it.
  void printForAnotherHost(const ByteBuffer& data);

  /// Prints `data` with ample limits, on the same port opened again. If the time-out of the port is
  /// so short that even a faultless printer may be too slow, prints on a new port.
  PrintResult printAgain(const ByteBuffer& data);

  /// Ends all faults, and gives the printer time to print its data.
  void recover();

  ByteBuffer paper();
  const Witness& witness() const { return *witness_; }
  simulator::Instant now() { return platform_->clock().monotonic(); }

  /// The calls to the platform, for a case that is replayed; "" otherwise.
  std::string trace();

 private:
  using Port = std::shared_ptr<ExternalAccessoryPort>;

  Port newPort(std::uint32_t timeoutMillis, std::shared_ptr<Platform> platform) const;
  void set(const std::string& flag, bool value);

  // The first member, because the platforms write to it until they are destroyed.
  std::unique_ptr<test::Trace> trace_;
  const Case& given_;
  const std::shared_ptr<test::VirtualPlatform> platform_;
  const std::shared_ptr<test::FaultyAccessory> accessory_;
  const std::shared_ptr<Witness> witness_;
  Port port_;
};

}  // namespace quordalvane::simulation
