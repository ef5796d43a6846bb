#include "backends/handheld/Streams.h"

#include <algorithm>

#include "backends/handheld/StreamEvents.h"

using quordalvane::handheld::StreamEvents;

/// Receives the events of a stream for the C++ object that waits for them.
@interface QuorStreamDelegate : NSObject <NSStreamDelegate> {
 @public
  std::shared_ptr<StreamEvents>* events;  // owned: `dealloc` deletes this `shared_ptr`
}
@end

@implementation QuorStreamDelegate

- (void)stream:(NSStream*)stream handleEvent:(NSStreamEvent)event {
  (*events)->note();
}

- (void)dealloc {
  delete events;
  [super dealloc];
}

@end

namespace quordalvane::handheld {
namespace {

using SteadyClock = std::chrono::steady_clock;

SteadyClock::time_point deadlineIn(double seconds) {
  constexpr double longest = 365.0 * 24 * 3600;
  const std::chrono::duration<double> wait(seconds > 0 ? std::min(seconds, longest) : 0);
  return SteadyClock::now() + std::chrono::ceil<SteadyClock::duration>(wait);
}

NSString* frameworkMode(std::string_view mode) {
  return mode == NSDefaultRunLoopMode ? ::NSDefaultRunLoopMode : stringOf(std::string(mode));
}

/// The common part of both directions. Each call asks the framework's stream whether it is ready;
/// the answer is not stored.
template <typename Interface, typename Framework>
class HandheldStream : public Interface {
 public:
  explicit HandheldStream(Framework* stream) : stream_(stream) {
    delegate_.get()->events = new std::shared_ptr<StreamEvents>(events_);
  }

  ~HandheldStream() override {
    @autoreleasepool {
      @try {
        [stream_.get() setDelegate:nil];
        [stream_.get() close];
        if (mode_.get() != nil) {
          [stream_.get() removeFromRunLoop:loop_.get() forMode:mode_.get()];
        }
      } @catch (NSException*) {
        // An exception is ignored, because the stream is released in any case.
      }
    }
  }

  // The framework's stream sends its events to `delegate_`, because the waits of this class need
  // them. It does not send them to `delegate`, because a port does not use them.
  void setDelegate(std::weak_ptr<const void> delegate) override {
    const bool isCleared = delegate.expired();
    ask([this, isCleared] { [stream_.get() setDelegate:isCleared ? nil : delegate_.get()]; });
  }

  // A port always schedules a stream on the loop of the calling thread.
  void scheduleInRunLoop(NSRunLoop& /*runLoop*/, std::string_view mode) override {
    ask([this, mode] {
      loop_ = Retained<::NSRunLoop>([::NSRunLoop currentRunLoop]);
      mode_ = Retained<NSString>(frameworkMode(mode));
      [stream_.get() scheduleInRunLoop:loop_.get() forMode:mode_.get()];
    });
  }

  void removeFromRunLoop(NSRunLoop& /*runLoop*/, std::string_view mode) override {
    ask([this, mode] {
      if (![loop_.get() isEqual:[::NSRunLoop currentRunLoop]]) {
        return;  // the stream is not scheduled on this loop
      }
      [stream_.get() removeFromRunLoop:loop_.get() forMode:frameworkMode(mode)];
      loop_ = Retained<::NSRunLoop>();
      mode_ = Retained<NSString>();
    });
  }

  void open() override {
    ask([this] { [stream_.get() open]; });
  }

  void close() override {
    ask([this] { [stream_.get() close]; });
    events_->note();
  }

  void waitUntilReady(double seconds) override {
    const auto deadline = deadlineIn(seconds);
    for (;;) {
      const auto seen = events_->count();
      if (isSettled() || SteadyClock::now() >= deadline) {
        return;
      }
      if (!turnLoopOnce(deadline)) {
        events_->awaitMoreThan(seen, deadline);
      }
    }
  }

 protected:
  /// Returns true if nobody need wait for the stream: the stream is ready, or it has ended.
  virtual bool isSettled() = 0;

  Framework* stream() const { return stream_.get(); }

  NSStreamStatus status() {
    return ask([this] { return [stream_.get() streamStatus]; });
  }

  bool isClosed() { return status() == NSStreamStatusClosed; }

  /// Returns whether the stream has ended by itself.
  bool hasEnded() {
    const NSStreamStatus now = status();
    return now == NSStreamStatusAtEnd || now == NSStreamStatusError;
  }

 private:
  /// If the stream is scheduled on the calling thread's loop, runs this loop until an event happens
  /// on the loop. Returns false if the stream is scheduled on the loop of another thread, or if the
  /// loop has nothing to do.
  bool turnLoopOnce(SteadyClock::time_point deadline) {
    return ask([this, deadline] {
      if (loop_.get() == nil || ![loop_.get() isEqual:[::NSRunLoop currentRunLoop]]) {
        return false;
      }
      const std::chrono::duration<double> left = deadline - SteadyClock::now();
      NSDate* const end = [NSDate dateWithTimeIntervalSinceNow:std::max(left.count(), 0.0)];
      return [loop_.get() runMode:mode_.get() beforeDate:end] == YES;
    });
  }

  const Retained<Framework> stream_;
  const std::shared_ptr<StreamEvents> events_ = std::make_shared<StreamEvents>();
  const Retained<QuorStreamDelegate> delegate_ =
      Retained<QuorStreamDelegate>::adopting([[QuorStreamDelegate alloc] init]);
  Retained<::NSRunLoop> loop_;  // the loop on which the stream is scheduled, or nil
  Retained<NSString> mode_;     // the mode in which the stream is scheduled
};

class HandheldInputStream final : public HandheldStream<NSInputStream, ::NSInputStream> {
 public:
  using HandheldStream::HandheldStream;

  bool hasBytesAvailable() override {
    return ask([this] { return [stream() hasBytesAvailable] == YES; });
  }

  std::int64_t read(std::uint8_t* buffer, std::size_t maxLength) override {
    if (maxLength == 0) {
      return 0;
    }
    return ask([&]() -> std::int64_t { return [stream() read:buffer maxLength:maxLength]; });
  }

 protected:
  bool isSettled() override { return isClosed() || hasEnded() || hasBytesAvailable(); }
};

class HandheldOutputStream final : public HandheldStream<NSOutputStream, ::NSOutputStream> {
 public:
  using HandheldStream::HandheldStream;

  // A stream that has ended counts as having space. A writer then tries to write, and notices the
  // end because the write fails.
  bool hasSpaceAvailable() override {
    return hasEnded() || ask([this] { return [stream() hasSpaceAvailable] == YES; });
  }

  std::int64_t write(const std::uint8_t* buffer, std::size_t maxLength) override {
    if (maxLength == 0) {
      return 0;
    }
    return ask([&]() -> std::int64_t { return [stream() write:buffer maxLength:maxLength]; });
  }

 protected:
  bool isSettled() override { return isClosed() || hasSpaceAvailable(); }
};

}  // namespace

std::shared_ptr<NSInputStream> inputOver(::NSInputStream* stream) {
  return std::make_shared<HandheldInputStream>(stream);
}

std::shared_ptr<NSOutputStream> outputOver(::NSOutputStream* stream) {
  return std::make_shared<HandheldOutputStream>(stream);
}

}  // namespace quordalvane::handheld
