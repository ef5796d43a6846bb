#include "tests/support/TracingPlatform.h"

#include <array>
#include <charconv>
#include <iomanip>
#include <new>
#include <sstream>
#include <utility>

#include "tests/support/Bytes.h"

namespace quordalvane::test {
namespace {

/// The shortest text that denotes exactly this number.
std::string exact(double value) {
  std::array<char, 32> text;
  return {text.data(), std::to_chars(text.data(), text.data() + text.size(), value).ptr};
}

/// The part of the tracing that both directions share.
template <typename Stream>
class TracingStream : public Stream {
 public:
  template <typename Next>
  TracingStream(Next next, Trace& trace, std::string name)
      : Stream(std::move(next)), trace_(trace), name_(std::move(name)) {}

  void setDelegate(std::weak_ptr<const void> delegate) override {
    const auto receiver = delegate.lock();
    note(About::Lifecycle, ".setDelegate " + trace_.nameOf(receiver.get()));
    Stream::setDelegate(std::move(delegate));
  }
  void scheduleInRunLoop(NSRunLoop& runLoop, std::string_view mode) override {
    note(About::Lifecycle, ".scheduleInRunLoop " + std::string(mode));
    Stream::scheduleInRunLoop(runLoop, mode);
  }
  void removeFromRunLoop(NSRunLoop& runLoop, std::string_view mode) override {
    note(About::Lifecycle, ".removeFromRunLoop " + std::string(mode));
    Stream::removeFromRunLoop(runLoop, mode);
  }
  void open() override {
    note(About::Lifecycle, ".open");
    Stream::open();
  }
  void close() override {
    note(About::Lifecycle, ".close");
    Stream::close();
  }

 protected:
  void note(About about, const std::string& text) { trace_.note(about, name_ + text); }

 private:
  Trace& trace_;
  const std::string name_;
};

class TracingInput : public TracingStream<ForwardingInputStream> {
 public:
  using TracingStream::TracingStream;

  bool hasBytesAvailable() override {
    const bool available = ForwardingInputStream::hasBytesAvailable();
    note(About::Question, ".hasBytesAvailable " + std::to_string(available));
    return available;
  }
  std::int64_t read(std::uint8_t* buffer, std::size_t maxLength) override {
    const std::int64_t count = ForwardingInputStream::read(buffer, maxLength);
    const bool isSound = count >= 0 && static_cast<std::size_t>(count) <= maxLength;
    note(About::Data,
         ".read " + std::to_string(maxLength) + " -> " +
             (isSound ? shown({buffer, static_cast<std::size_t>(count)}) : std::to_string(count)));
    return count;
  }
};

class TracingOutput : public TracingStream<ForwardingOutputStream> {
 public:
  using TracingStream::TracingStream;

  bool hasSpaceAvailable() override {
    const bool available = ForwardingOutputStream::hasSpaceAvailable();
    note(About::Question, ".hasSpaceAvailable " + std::to_string(available));
    return available;
  }
  std::int64_t write(const std::uint8_t* buffer, std::size_t maxLength) override {
    const std::int64_t count = ForwardingOutputStream::write(buffer, maxLength);
    note(About::Data, ".write " + shown({buffer, maxLength}) + " -> " + std::to_string(count));
    return count;
  }
};

class TracingSession : public EASession {
 public:
  TracingSession(std::shared_ptr<EASession> next, Trace& trace)
      : next_(std::move(next)),
        input_(std::make_shared<TracingInput>(next_->inputStream(), trace, "input")),
        output_(std::make_shared<TracingOutput>(next_->outputStream(), trace, "output")),
        trace_(trace) {}
  ~TracingSession() override {
    try {
      trace_.note(About::Lifecycle, "session.release");
    } catch (const std::bad_alloc&) {
      // If a test lets allocations fail, the trace may not show the release.
    }
  }

  std::shared_ptr<NSInputStream> inputStream() override { return input_; }
  std::shared_ptr<NSOutputStream> outputStream() override { return output_; }
  void abandon() override { next_->abandon(); }

 private:
  const std::shared_ptr<EASession> next_;
  const std::shared_ptr<TracingInput> input_;
  const std::shared_ptr<TracingOutput> output_;
  Trace& trace_;
};

class TracingAccessory : public ForwardingAccessory {
 public:
  TracingAccessory(std::shared_ptr<EAAccessory> next, Trace& trace)
      : ForwardingAccessory(std::move(next)), trace_(trace) {}

  bool isConnected() override {
    const bool connected = ForwardingAccessory::isConnected();
    trace_.note(About::Question, "accessory.isConnected " + std::to_string(connected));
    return connected;
  }
  std::shared_ptr<EASession> openSession(const std::string& protocol) override {
    trace_.note(About::Lifecycle, "accessory.openSession " + protocol);
    auto session = ForwardingAccessory::openSession(protocol);
    return session ? std::make_shared<TracingSession>(std::move(session), trace_) : nullptr;
  }

 private:
  Trace& trace_;
};

class TracingThread : public ForwardingThread {
 public:
  TracingThread(std::shared_ptr<NSThread> next, Trace& trace)
      : ForwardingThread(std::move(next)), trace_(trace) {}

  bool start() override {
    trace_.note(About::Lifecycle, "thread.start");
    return ForwardingThread::start();
  }
  void cancel() override {
    trace_.note(About::Lifecycle, "thread.cancel");
    ForwardingThread::cancel();
  }
  bool performAndWait(std::function<void()> routine) override {
    trace_.note(About::Lifecycle, "thread.performAndWait");
    const bool ran = ForwardingThread::performAndWait(std::move(routine));
    trace_.note(About::Lifecycle, "thread.performAndWait -> " + std::to_string(ran));
    return ran;
  }

 private:
  Trace& trace_;
};

}  // namespace

class TracingPlatform::Manager : public ForwardingAccessoryManager {
 public:
  Manager(EAAccessoryManager& next, Trace& trace)
      : ForwardingAccessoryManager(next), trace_(trace) {}

  std::vector<std::shared_ptr<EAAccessory>> connectedAccessories() override {
    trace_.note(About::Lifecycle, "connectedAccessories");
    auto accessories = ForwardingAccessoryManager::connectedAccessories();
    for (auto& accessory : accessories) {
      accessory = std::make_shared<TracingAccessory>(std::move(accessory), trace_);
    }
    return accessories;
  }

 private:
  Trace& trace_;
};

class TracingPlatform::Device : public ForwardingDevice {
 public:
  Device(UIDevice& next, Trace& trace) : ForwardingDevice(next), trace_(trace) {}

  std::string systemVersion() override {
    std::string version = ForwardingDevice::systemVersion();
    trace_.note(About::Question, "systemVersion " + version);
    return version;
  }

 private:
  Trace& trace_;
};

class TracingPlatform::TracedClock : public ForwardingClock {
 public:
  TracedClock(Clock& next, Trace& trace) : ForwardingClock(next), trace_(trace) {}

  TimeValue gettimeofday() override {
    const TimeValue value = ForwardingClock::gettimeofday();
    std::ostringstream text;
    text << "gettimeofday " << value.tv_sec << '.' << std::setw(6) << std::setfill('0')
         << value.tv_usec;
    trace_.note(About::Question, text.str());
    return value;
  }
  void usleep(std::uint64_t microseconds) override {
    trace_.note(About::Wait, "usleep " + std::to_string(microseconds));
    ForwardingClock::usleep(microseconds);
  }
  void select(std::int32_t microseconds) override {
    trace_.note(About::Wait, "select " + std::to_string(microseconds));
    ForwardingClock::select(microseconds);
  }

 private:
  Trace& trace_;
};

class TracingPlatform::RunLoop : public ForwardingRunLoop {
 public:
  RunLoop(NSRunLoop& next, Trace& trace) : ForwardingRunLoop(next), trace_(trace) {}

  void runUntilDate(double seconds) override {
    trace_.note(About::Wait, "slice " + exact(seconds));
    ForwardingRunLoop::runUntilDate(seconds);
  }
  void runUntilDate(double seconds, NSStream& awaited) override {
    const bool input = dynamic_cast<NSInputStream*>(&awaited) != nullptr;
    trace_.note(About::Wait,
                std::string("slice ") + (input ? "for input " : "for output ") + exact(seconds));
    ForwardingRunLoop::runUntilDate(seconds, awaited);
  }

 private:
  Trace& trace_;
};

TracingPlatform::TracingPlatform(std::shared_ptr<Platform> next, Trace& trace)
    : ForwardingPlatform(std::move(next)),
      trace_(trace),
      manager_(std::make_unique<Manager>(ForwardingPlatform::sharedAccessoryManager(), trace)),
      device_(std::make_unique<Device>(ForwardingPlatform::currentDevice(), trace)),
      clock_(std::make_unique<TracedClock>(ForwardingPlatform::clock(), trace)) {}

TracingPlatform::~TracingPlatform() = default;

EAAccessoryManager& TracingPlatform::sharedAccessoryManager() {
  return *manager_;
}

UIDevice& TracingPlatform::currentDevice() {
  return *device_;
}

Clock& TracingPlatform::clock() {
  return *clock_;
}

NSRunLoop& TracingPlatform::currentRunLoop() {
  NSRunLoop& next = ForwardingPlatform::currentRunLoop();
  const std::lock_guard lock(mutex_);
  auto& runLoop = runLoops_[&next];
  if (!runLoop) {
    runLoop = std::make_unique<RunLoop>(next, trace_);
  }
  return *runLoop;
}

std::shared_ptr<NSThread> TracingPlatform::makeThread(std::function<void()> body) {
  auto next = ForwardingPlatform::makeThread([&trace = trace_, body = std::move(body)] {
    trace.nameThread("port thread");
    body();
  });
  return next ? std::make_shared<TracingThread>(std::move(next), trace_) : nullptr;
}

void TracingPlatform::ignoreSigPipe() {
  trace_.note(About::Lifecycle, "ignoreSigPipe");
  ForwardingPlatform::ignoreSigPipe();
}

}  // namespace quordalvane::test
