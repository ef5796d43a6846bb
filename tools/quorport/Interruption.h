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

/// Thrown by an exchange with the printer that the user interrupted.
class Interrupted {};

/// Records a stop request, which is the user's wish to end the command, and lets it take effect.
/// The effect depends on the stage of the command. `begin`, `beginExchange`, `beginJob` and `end`
/// set the stage. All members may be called from any thread.
class Interruption {
 public:
  using GiveUp = std::function<void(const Report& report)>;

  /// `giveUp` must deliver the report that it receives, and then end the process. `giveUp` is
  /// called only while nothing is open that must be closed. `giveUp` is necessary because an
  /// attempt to connect, or a read from a pipe, cannot be interrupted.
  ///
  /// `report` is used if a stop request ends the command before `setReport` is called.
  Interruption(Report report, GiveUp giveUp);
  ~Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

  /// Records a stop request, and lets it take effect. `code` is the exit status of a command that
  /// the request ends.
  void interrupt(ExitCode code);

  /// Returns the exit status of the command if a stop request ends it; empty if there was
  /// no request.
  std::optional<ExitCode> code();

  /// Replaces the report that is delivered if a stop request ends the command.
  void setReport(Report report);

  /// Returns the report that is delivered if a stop request ends the command. If there was a
  /// request, the exit status in this report is the result of `code`. Otherwise the report
  /// is unchanged since the constructor or `setReport` received it.
  Report report();

  /// Notes that the command talks to this device from now on.
  void speakTo(const std::string& device);

  /// Returns the device that the command last talked to; empty if it has talked to none.
  std::optional<std::string> device();

  /// Begins the stage in which nothing is open, the first stage of each command. In this stage, a
  /// stop request ends the process, even if the request arrived before this call.
  void begin();

  /// Begins the stage in which a port is open. In this stage, `sleep` and `check` throw Interrupted
  /// after a stop request.
  void beginExchange();

  /// Begins the stage in which a job is printed. In this stage, a stop request cancels the job,
  /// even if the request arrived before this call. The job must live until `end`.
  void beginJob(PrintJob& job);

  /// Begins the last stage. Its steps are always completed: a stop request has no effect any more.
  void end();

  /// Waits for `time`, or until the descriptor `noticed` is readable; -1 means no descriptor. In
  /// the stage that `beginExchange` begins, `sleep` throws Interrupted as soon as there is a stop
  /// request. In the other stages, `sleep` does not notice stop requests.
  void sleep(std::chrono::microseconds time, int noticed = -1);

  /// Throws as `sleep` does, but does not wait. To be called in loops that never sleep.
  void check();

 private:
  enum class Stage { Beginning, Exchange, Job, End };

  bool canStop();
  Report reportWithCode() const;
  void giveUp() const;

  const GiveUp giveUp_;
  const int wish_;                  // becomes readable when a stop request arrives
  std::mutex mutex_;                // guards the members below
  std::unique_ptr<Report> report_;  // never null
  std::optional<std::string> device_;
  Stage stage_ = Stage::Beginning;
  PrintJob* job_ = nullptr;
  std::optional<ExitCode> code_;  // empty if there was no stop request
};

/// The ordinary platform, except that a stop request interrupts its sleeps. Some loops of a port
/// never sleep. But each of these loops asks whether the accessory is connected, so a stop request
/// interrupts that question as well.
class InterruptiblePlatform : public ForwardingPlatform {
 public:
  explicit InterruptiblePlatform(std::shared_ptr<Interruption> interruption);

  Clock& clock() override { return clock_; }

  /// Adds an accessory. `device` is the accessory's device text. After a session on the accessory
  /// was opened, the command's report names this device. If `device` is empty, the report does not
  /// name the device.
  void attach(const std::shared_ptr<EAAccessory>& accessory, std::optional<std::string> device);

  /// Returns all attached accessories, in the order in which they were attached.
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
