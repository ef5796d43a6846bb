#include "tests/support/FaultyPlatform.h"

#include <map>
#include <mutex>
#include <utility>

namespace quordalvane::test {

Fault* FaultPlan::strike(PlatformCall call) {
  if (!armed_ || !fault_->befalls(call)) {
    return nullptr;
  }
  ++calls_;
  const bool strikes = fromThereOn_ ? calls_ >= k_ : calls_ == k_;
  if (strikes) {
    clockStep_ += fault_->clockStep();
    fault_->before();
  }
  return strikes ? fault_.get() : nullptr;
}

namespace {

using Plan = std::shared_ptr<FaultPlan>;

template <typename Stream>
class FaultyStream : public Stream {
 public:
  template <typename Next>
  FaultyStream(Next next, Plan plan) : Stream(std::move(next)), plan_(std::move(plan)) {}

  void setDelegate(std::weak_ptr<const void> delegate) override {
    strike(PlatformCall::Other);
    Stream::setDelegate(std::move(delegate));
  }
  void scheduleInRunLoop(NSRunLoop& runLoop, std::string_view mode) override {
    strike(PlatformCall::Other);
    Stream::scheduleInRunLoop(runLoop, mode);
  }
  void removeFromRunLoop(NSRunLoop& runLoop, std::string_view mode) override {
    strike(PlatformCall::Other);
    Stream::removeFromRunLoop(runLoop, mode);
  }
  void open() override {
    strike(PlatformCall::Other);
    Stream::open();
  }
  void close() override {
    strike(PlatformCall::Other);
    Stream::close();
  }

 protected:
  Fault* strike(PlatformCall call) { return plan_->strike(call); }

 private:
  const Plan plan_;
};

class FaultyInput : public FaultyStream<ForwardingInputStream> {
 public:
  using FaultyStream::FaultyStream;

  bool hasBytesAvailable() override {
    Fault* const fault = strike(PlatformCall::HasBytes);
    return fault ? fault->hasBytes(next()) : next().hasBytesAvailable();
  }
  bool expectsBytes() override {
    strike(PlatformCall::Other);
    return next().expectsBytes();
  }
  std::int64_t read(std::uint8_t* buffer, std::size_t count) override {
    Fault* const fault = strike(PlatformCall::Read);
    return fault ? fault->read(next(), buffer, count) : next().read(buffer, count);
  }
};

class FaultyOutput : public FaultyStream<ForwardingOutputStream> {
 public:
  using FaultyStream::FaultyStream;

  bool hasSpaceAvailable() override {
    Fault* const fault = strike(PlatformCall::Space);
    return fault ? fault->hasSpace(next()) : next().hasSpaceAvailable();
  }
  std::int64_t write(const std::uint8_t* buffer, std::size_t count) override {
    Fault* const fault = strike(PlatformCall::Write);
    return fault ? fault->write(next(), buffer, count) : next().write(buffer, count);
  }
};

class FaultySession : public EASession {
 public:
  FaultySession(std::shared_ptr<EASession> next, const Plan& plan)
      : next_(std::move(next)),
        input_(std::make_shared<FaultyInput>(next_->inputStream(), plan)),
        output_(std::make_shared<FaultyOutput>(next_->outputStream(), plan)),
        plan_(plan) {}

  std::shared_ptr<NSInputStream> inputStream() override {
    plan_->strike(PlatformCall::Other);
    return input_;
  }
  std::shared_ptr<NSOutputStream> outputStream() override {
    plan_->strike(PlatformCall::Other);
    return output_;
  }
  void abandon() override { next_->abandon(); }

 private:
  const std::shared_ptr<EASession> next_;  // keeps the session, because its end would end the link
  const std::shared_ptr<NSInputStream> input_;
  const std::shared_ptr<NSOutputStream> output_;
  const Plan plan_;
};

class FaultyAccessory : public ForwardingAccessory {
 public:
  FaultyAccessory(std::shared_ptr<EAAccessory> next, Plan plan)
      : ForwardingAccessory(next), next_(std::move(next)), plan_(std::move(plan)) {}

  std::optional<std::string> name() override { return asked(&EAAccessory::name); }
  std::optional<std::string> serialNumber() override { return asked(&EAAccessory::serialNumber); }
  std::optional<std::string> modelNumber() override { return asked(&EAAccessory::modelNumber); }
  std::optional<std::string> manufacturer() override { return asked(&EAAccessory::manufacturer); }
  std::vector<std::string> protocolStrings() override {
    return asked(&EAAccessory::protocolStrings);
  }
  std::uint64_t connectionID() override { return asked(&EAAccessory::connectionID); }
  std::string description() override { return asked(&EAAccessory::description); }
  void noticeLoss() override { asked(&EAAccessory::noticeLoss); }
  bool isConnected() override {
    Fault* const fault = plan_->strike(PlatformCall::Connected);
    return fault ? fault->isConnected(*next_) : next_->isConnected();
  }
  std::shared_ptr<EASession> openSession(const std::string& protocol) override {
    Fault* const fault = plan_->strike(PlatformCall::Session);
    const auto session =
        fault ? fault->openSession(*next_, protocol) : next_->openSession(protocol);
    return session ? std::make_shared<FaultySession>(session, plan_) : nullptr;
  }

 private:
  template <typename Answer>
  Answer asked(Answer (EAAccessory::*question)()) {
    plan_->strike(PlatformCall::Other);
    return ((*next_).*question)();
  }

  const std::shared_ptr<EAAccessory> next_;
  const Plan plan_;
};

class FaultyManager : public ForwardingAccessoryManager {
 public:
  FaultyManager(EAAccessoryManager& next, Plan plan)
      : ForwardingAccessoryManager(next), plan_(std::move(plan)) {}

  std::vector<std::shared_ptr<EAAccessory>> connectedAccessories() override {
    plan_->strike(PlatformCall::Other);
    auto accessories = ForwardingAccessoryManager::connectedAccessories();
    for (auto& accessory : accessories) {
      accessory = std::make_shared<FaultyAccessory>(std::move(accessory), plan_);
    }
    return accessories;
  }
  bool readsAddresses() override {
    plan_->strike(PlatformCall::Other);
    return ForwardingAccessoryManager::readsAddresses();
  }
  std::string addressOf(EAAccessory& accessory) override {
    plan_->strike(PlatformCall::Other);
    return ForwardingAccessoryManager::addressOf(accessory);
  }

 private:
  const Plan plan_;
};

class FaultyDevice : public ForwardingDevice {
 public:
  FaultyDevice(UIDevice& next, Plan plan) : ForwardingDevice(next), plan_(std::move(plan)) {}
  std::string systemVersion() override {
    plan_->strike(PlatformCall::Other);
    return ForwardingDevice::systemVersion();
  }

 private:
  const Plan plan_;
};

class FaultyClock : public ForwardingClock {
 public:
  FaultyClock(Clock& next, Plan plan) : ForwardingClock(next), plan_(std::move(plan)) {}
  TimeValue gettimeofday() override {
    plan_->strike(PlatformCall::Clock);
    TimeValue now = ForwardingClock::gettimeofday();
    now.tv_sec += plan_->clockStep();
    return now;
  }
  std::chrono::nanoseconds monotonic() override {
    plan_->strike(PlatformCall::Other);
    return ForwardingClock::monotonic();
  }
  void usleep(std::uint64_t microseconds) override {
    plan_->strike(PlatformCall::Other);
    ForwardingClock::usleep(microseconds);
  }
  void select(std::int32_t microseconds) override {
    plan_->strike(PlatformCall::Other);
    ForwardingClock::select(microseconds);
  }

 private:
  const Plan plan_;
};

class FaultyRunLoop : public ForwardingRunLoop {
 public:
  FaultyRunLoop(NSRunLoop& next, Plan plan) : ForwardingRunLoop(next), plan_(std::move(plan)) {}
  void runUntilDate(double seconds) override {
    plan_->strike(PlatformCall::Other);
    ForwardingRunLoop::runUntilDate(seconds);
  }
  void runUntilDate(double seconds, NSStream& awaited) override {
    plan_->strike(PlatformCall::Other);
    ForwardingRunLoop::runUntilDate(seconds, awaited);
  }

 private:
  const Plan plan_;
};

class FaultyThread : public ForwardingThread {
 public:
  FaultyThread(std::shared_ptr<NSThread> next, Plan plan)
      : ForwardingThread(next), next_(std::move(next)), plan_(std::move(plan)) {}

  bool start() override {
    Fault* const fault = plan_->strike(PlatformCall::StartThread);
    return fault ? fault->start(*next_) : next_->start();
  }
  void cancel() override {
    plan_->strike(PlatformCall::Other);
    next_->cancel();
  }
  bool performAndWait(std::function<void()> routine) override {
    Fault* const fault = plan_->strike(PlatformCall::Carry);
    return fault ? fault->performAndWait(*next_, std::move(routine))
                 : next_->performAndWait(std::move(routine));
  }

 private:
  const std::shared_ptr<NSThread> next_;
  const Plan plan_;
};

}  // namespace

class FaultyPlatform::Parts {
 public:
  Parts(Platform& below_, const Plan& plan_)
      : below(below_),
        plan(plan_),
        manager(below.sharedAccessoryManager(), plan),
        device(below.currentDevice(), plan),
        clock(below.clock(), plan) {}

  FaultyRunLoop& runLoop(NSRunLoop& next) {
    const std::lock_guard lock(mutex_);
    return runLoops_.try_emplace(&next, next, plan).first->second;
  }

  Platform& below;  // valid while the FaultyPlatform exists
  const Plan plan;
  FaultyManager manager;
  FaultyDevice device;
  FaultyClock clock;

 private:
  std::mutex mutex_;  // guards runLoops_
  std::map<NSRunLoop*, FaultyRunLoop> runLoops_;
};

FaultyPlatform::FaultyPlatform(std::shared_ptr<Platform> next, std::shared_ptr<FaultPlan> plan)
    : ForwardingPlatform(next), parts_(std::make_unique<Parts>(*next, plan)) {}

FaultyPlatform::~FaultyPlatform() = default;

EAAccessoryManager& FaultyPlatform::sharedAccessoryManager() {
  return parts_->manager;
}

UIDevice& FaultyPlatform::currentDevice() {
  return parts_->device;
}

Clock& FaultyPlatform::clock() {
  return parts_->clock;
}

NSRunLoop& FaultyPlatform::currentRunLoop() {
  parts_->plan->strike(PlatformCall::Other);
  return parts_->runLoop(ForwardingPlatform::currentRunLoop());
}

std::shared_ptr<NSThread> FaultyPlatform::makeThread(std::function<void()> body) {
  Fault* const fault = parts_->plan->strike(PlatformCall::MakeThread);
  Platform& below = parts_->below;
  auto thread =
      fault ? fault->makeThread(below, std::move(body)) : below.makeThread(std::move(body));
  return thread ? std::make_shared<FaultyThread>(std::move(thread), parts_->plan) : nullptr;
}

bool FaultyPlatform::isMainThread() {
  parts_->plan->strike(PlatformCall::Other);
  return ForwardingPlatform::isMainThread();
}

void FaultyPlatform::ignoreSigPipe() {
  parts_->plan->strike(PlatformCall::Other);
  ForwardingPlatform::ignoreSigPipe();
}

}  // namespace quordalvane::test
