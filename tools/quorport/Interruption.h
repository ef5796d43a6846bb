#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "backends/posix/PosixPlatform.h"
#include "job/PrintJob.h"
#include "platform/Forwarding.h"
#include "tools/quorport/ExitCode.h"

namespace quordalvane::tool {

struct Report;

/// Thrown out of an exchange that was interrupted.
class Interrupted {};

/// The user's wish to stop, from its arrival to its effect, which depends on how far the command
/// is. All members may be called from any thread.
class Interruption {
 public:
  using GiveUp = std::function<void(const Report& report)>;

  /// `giveUp` must end the process, with the report that it is handed. It is called while nothing
  /// is open that would have to be closed: neither a connection being made nor a read from a pipe
  /// can be stopped.
  ///
  /// `report` is the command's report if the wish ends it before it has one of its own.
  Interruption(Report report, GiveUp giveUp);
  ~Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

  /// The wish arrives. `code` is the exit status of a command that ends by it.
  void interrupt(ExitCode code);

  /// The code that arrived with the wish; null if none has arrived.
  std::optional<ExitCode> code();

  /// Replaces the command's report for the case that the wish ends it.
  void setReport(Report report);

  /// That report, with the code of the wish.
  Report report();

  /// The command speaks to this device from now on.
  void speakTo(const std::string& device);

  /// The device that the command spoke to last; null if it has spoken to none.
  std::optional<std::string> device();

  /// Nothing is open: as at creation, the wish ends the process, be it early or late.
  void begin();

  /// A port is open: from now on `sleep` and `check` throw Interrupted once the wish has arrived.
  void beginExchange();

  /// A job runs, and the wish cancels it, be it early or late. The job must live until `end`.
  void beginJob(PrintJob& job);

  /// Only the steps that are always done follow: the wish has no effect any more.
  void end();

  /// Also ends as soon as `noticed` is readable, if that is a descriptor.
  void sleep(std::chrono::microseconds time, int noticed = -1);

  /// The same without a sleep, for a retry that never sleeps.
  void check();

 private:
  enum class Stage { Beginning, Exchange, Job, End };

  bool canStop();
  Report reportWithCode() const;
  void giveUp() const;

  const GiveUp giveUp_;
  const int wish_;                  // becomes readable when the wish arrives
  std::mutex mutex_;                // guards the members below
  std::unique_ptr<Report> report_;  // never null
  std::optional<std::string> device_;
  Stage stage_ = Stage::Beginning;
  PrintJob* job_ = nullptr;
  std::optional<ExitCode> code_;  // of the wish, once it has arrived
};

/// The platform of the command: this system's, with sleeps that can be interrupted. Not every retry
/// of a port sleeps, but each asks whether the accessory is connected: that can be interrupted,
/// too.
class InterruptiblePlatform : public ForwardingPlatform {
 public:
  explicit InterruptiblePlatform(std::shared_ptr<Interruption> interruption);

  Clock& clock() override { return clock_; }

  /// `device` is the text that the accessory was made from. A command that opens a session on it
  /// speaks to that device; null keeps it out of the command's report.
  void attach(const std::shared_ptr<EAAccessory>& accessory, std::optional<std::string> device);

  /// The accessories as they were attached, in that order.
  const std::vector<std::shared_ptr<EAAccessory>>& accessories() const { return accessories_; }

 private:
  class SleepsUntilInterrupted : public ForwardingClock {
   public:
    SleepsUntilInterrupted(Clock& next, std::shared_ptr<Interruption> interruption)
        : ForwardingClock(next), interruption_(std::move(interruption)) {}

    void usleep(std::uint64_t microseconds) override;
    void select(std::int32_t microseconds) override;

   private:
    const std::shared_ptr<Interruption> interruption_;
  };

  InterruptiblePlatform(std::shared_ptr<posix::PosixPlatform> system,
                        std::shared_ptr<Interruption> interruption);

  const std::shared_ptr<posix::PosixPlatform> system_;
  const std::shared_ptr<Interruption> interruption_;
  SleepsUntilInterrupted clock_;
  std::vector<std::shared_ptr<EAAccessory>> accessories_;
};

}  // namespace quordalvane::tool
