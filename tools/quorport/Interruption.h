#pragma once

#include <chrono>
#include <condition_variable>
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
#include "tools/quorport/Report.h"

namespace quordalvane::tool {

/// Raised out of an exchange that was interrupted.
class Interrupted {};

/// The user's wish to stop, from the moment it comes to where it takes effect, which depends on how
/// far the command is. All members may be called from any thread.
class Interruption {
 public:
  using GiveUp = std::function<void(const Report& report)>;

  /// `giveUp` must end the process, with the report that it is handed. It is called while nothing
  /// is open that would have to be closed: neither a connection being made nor a read from a pipe
  /// can be told to stop.
  ///
  /// `report` is what the command reports if the wish ends it before it has anything to tell.
  explicit Interruption(Report report, GiveUp giveUp)
      : giveUp_(std::move(giveUp)), report_(std::move(report)) {}

  /// The wish comes. `code` is the exit status of a command that ends by it.
  void interrupt(ExitCode code);

  /// The code that the wish came with; none if it has not come.
  std::optional<ExitCode> code();

  /// Replaces what the command reports if the wish ends it.
  void setReport(Report report);

  /// That report, with the code of the wish.
  Report report();

  /// The command speaks to this device from now on.
  void speakTo(const std::string& device);

  /// The device that the command spoke to last; null if it has spoken to none.
  std::optional<std::string> device();

  /// Nothing is open: as at creation, the wish ends the process when it comes or has come.
  void begin();

  /// A port is open: from now on `sleep` and `check` raise Interrupted when the wish comes or has
  /// come.
  void beginExchange();

  /// A job runs, which is cancelled when the wish comes or has come. It must live until `end`.
  void beginJob(PrintJob& job);

  /// Only what must be done in any case follows: the wish has no effect any more.
  void end();

  void sleep(std::chrono::microseconds time);

  /// The same without a sleep, for what goes on and on.
  void check();

 private:
  enum class Stage { Beginning, Exchange, Job, End };

  bool mustStop() const { return code_ && stage_ == Stage::Exchange; }
  Report reportWithCode() const;
  void giveUp() const;

  std::mutex mutex_;  // guards what follows
  std::condition_variable wished_;
  const GiveUp giveUp_;
  Report report_;
  std::optional<std::string> device_;
  Stage stage_ = Stage::Beginning;
  PrintJob* job_ = nullptr;
  std::optional<ExitCode> code_;  // of the wish, once it has come
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
