#include "tools/quorport/Interruption.h"

#include <algorithm>
#include <utility>

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
    : giveUp_(std::move(giveUp)), report_(std::make_unique<Report>(std::move(report))) {}

Interruption::~Interruption() = default;

void Interruption::interrupt(ExitCode code) {
  const std::lock_guard lock(mutex_);
  code_ = code_.value_or(code);
  switch (stage_) {
    case Stage::Beginning:
      giveUp();
      return;
    case Stage::Exchange:
      wished_.notify_all();
      return;
    case Stage::Job:
      job_->cancel();
      return;
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

void Interruption::sleep(std::chrono::microseconds time) {
  const auto deadline = std::chrono::steady_clock::now() + time;
  std::unique_lock lock(mutex_);
  if (wished_.wait_until(lock, deadline, [this] { return mustStop(); })) {
    throw Interrupted();
  }
}

void Interruption::check() {
  const std::lock_guard lock(mutex_);
  if (mustStop()) {
    throw Interrupted();
  }
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
  constexpr std::uint64_t aYear = 365ULL * 24 * 3600 * 1'000'000;  // in range in any sum
  interruption_->sleep(std::chrono::microseconds(std::min(microseconds, aYear)));
}

void InterruptiblePlatform::SleepsUntilInterrupted::select(std::int32_t microseconds) {
  interruption_->sleep(std::chrono::microseconds(microseconds));
}

}  // namespace quordalvane::tool
