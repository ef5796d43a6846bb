#include "tools/quorport/Interruption.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include "backends/posix/Deadline.h"
#include "tools/quorport/Report.h"

namespace quordalvane::tool {
namespace {

class InterruptibleAccessory : public ForwardingAccessory {
 public:
  InterruptibleAccessory(std::shared_ptr<EAAccessory> next,
                         std::shared_ptr<Interruption> interruption,
                         std::optional<std::string> device)
      : ForwardingAccessory(std::move(next)),
        interruption_(std::move(interruption)),
        device_(std::move(device)) {}

  bool isConnected() override {
    interruption_->check();
    return ForwardingAccessory::isConnected();
  }

  std::shared_ptr<EASession> openSession(const std::string& protocol) override {
    if (device_) {
      interruption_->speakTo(*device_);
    }
    return ForwardingAccessory::openSession(protocol);
  }

 private:
  const std::shared_ptr<Interruption> interruption_;
  const std::optional<std::string> device_;
};

}  // namespace

Interruption::Interruption(Report report, GiveUp giveUp)
    : giveUp_(std::move(giveUp)),
      wish_(::eventfd(0, EFD_CLOEXEC)),
      report_(std::make_unique<Report>(std::move(report))) {
  if (wish_ < 0) {
    throw std::system_error(errno, std::generic_category(), "cannot wait for signals");
  }
}

Interruption::~Interruption() {
  ::close(wish_);
}

void Interruption::interrupt(ExitCode code) {
  const std::lock_guard lock(mutex_);
  code_ = code_.value_or(code);
  ::eventfd_write(wish_, 1);
  switch (stage_) {
    case Stage::Beginning:
      giveUp();
      return;
    case Stage::Job:
      job_->cancel();
      return;
    case Stage::Exchange:
    case Stage::End:
      return;
  }
}

std::optional<ExitCode> Interruption::code() {
  const std::lock_guard lock(mutex_);
  return code_;
}

void Interruption::setReport(Report report) {
  const std::lock_guard lock(mutex_);
  *report_ = std::move(report);
}

Report Interruption::report() {
  const std::lock_guard lock(mutex_);
  return reportWithCode();
}

void Interruption::speakTo(const std::string& device) {
  const std::lock_guard lock(mutex_);
  device_ = device;
}

std::optional<std::string> Interruption::device() {
  const std::lock_guard lock(mutex_);
  return device_;
}

Report Interruption::reportWithCode() const {
  Report report = *report_;
  report.code = code_.value_or(report.code);
  return report;
}

void Interruption::giveUp() const {
  Report report = reportWithCode();
  nameDevice(report, device_);
  giveUp_(report);
}

void Interruption::begin() {
  const std::lock_guard lock(mutex_);
  stage_ = Stage::Beginning;
  if (code_) {
    giveUp();
  }
}

void Interruption::beginExchange() {
  const std::lock_guard lock(mutex_);
  stage_ = Stage::Exchange;
}

void Interruption::beginJob(PrintJob& job) {
  const std::lock_guard lock(mutex_);
  stage_ = Stage::Job;
  job_ = &job;
  if (code_) {
    job_->cancel();
  }
}

void Interruption::end() {
  const std::lock_guard lock(mutex_);
  stage_ = Stage::End;
}

void Interruption::sleep(std::chrono::microseconds time, int noticed) {
  const auto deadline = posix::SteadyClock::now() + time;
  pollfd awaited[] = {{.fd = -1, .events = POLLIN, .revents = 0},
                      {.fd = noticed, .events = POLLIN, .revents = 0}};
  int ready = -1;
  while (ready < 0 || awaited[0].revents != 0) {
    awaited[0].fd = canStop() ? wish_ : -1;
    const timespec left = posix::timeLeft(deadline);
    ready = ::ppoll(awaited, std::size(awaited), &left, nullptr);
    check();
  }
}

void Interruption::check() {
  const std::lock_guard lock(mutex_);
  if (code_ && stage_ == Stage::Exchange) {
    throw Interrupted();
  }
}

bool Interruption::canStop() {
  const std::lock_guard lock(mutex_);
  return stage_ == Stage::Exchange;
}

InterruptiblePlatform::InterruptiblePlatform(std::shared_ptr<Interruption> interruption)
    : InterruptiblePlatform(std::make_shared<posix::PosixPlatform>(), std::move(interruption)) {}

InterruptiblePlatform::InterruptiblePlatform(std::shared_ptr<posix::PosixPlatform> system,
                                             std::shared_ptr<Interruption> interruption)
    : ForwardingPlatform(system),
      system_(std::move(system)),
      interruption_(std::move(interruption)),
      clock_(system_->clock(), interruption_) {}

void InterruptiblePlatform::attach(const std::shared_ptr<EAAccessory>& accessory,
                                   std::optional<std::string> device) {
  accessories_.push_back(accessory);
  system_->attach(
      std::make_shared<InterruptibleAccessory>(accessory, interruption_, std::move(device)));
}

void InterruptiblePlatform::SleepsUntilInterrupted::usleep(std::uint64_t microseconds) {
  // One year in microseconds, which can be added to any time without an overflow.
  constexpr std::uint64_t aYear = 365ULL * 24 * 3600 * 1'000'000;
  interruption_->sleep(std::chrono::microseconds(std::min(microseconds, aYear)));
}

void InterruptiblePlatform::SleepsUntilInterrupted::select(std::int32_t microseconds) {
  interruption_->sleep(std::chrono::microseconds(microseconds));
}

}  // namespace quordalvane::tool
