#pragma once

#include <memory>
#include <utility>

#include "platform/Platform.h"

// Each of these classes passes every call on to another object with the same interface. To change
// only a few calls of a platform, for example to record them or to make them fail, derive a class
// from one of these and override those calls.

namespace quordalvane {

/// Passes every call on to another clock.
class ForwardingClock : public Clock {
 public:
  /// `next` must outlive this object.
  explicit ForwardingClock(Clock& next) : next_(next) {}

  TimeValue gettimeofday() override { return next_.gettimeofday(); }
  std::chrono::nanoseconds monotonic() override { return next_.monotonic(); }
  void usleep(std::uint64_t microseconds) override { next_.usleep(microseconds); }
  void select(std::int32_t microseconds) override { next_.select(microseconds); }

 private:
  Clock& next_;
};

/// Passes every call on to another run loop.
class ForwardingRunLoop : public NSRunLoop {
 public:
  /// `next` must outlive this object.
  explicit ForwardingRunLoop(NSRunLoop& next) : next_(next) {}

  void runUntilDate(double seconds) override { next_.runUntilDate(seconds); }
  void runUntilDate(double seconds, NSStream& awaited) override {
    next_.runUntilDate(seconds, awaited);
  }

 private:
  NSRunLoop& next_;
};

/// The common part of the classes for input and output streams. `Stream` is NSInputStream or
/// NSOutputStream.
template <typename Stream>
class ForwardingStream : public Stream {
 public:
  /// `next` must not be null; this object keeps it alive.
  explicit ForwardingStream(std::shared_ptr<Stream> next) : next_(std::move(next)) {}

  /// @copydoc quordalvane::NSStream::setDelegate
  void setDelegate(std::weak_ptr<const void> delegate) override {
    next_->setDelegate(std::move(delegate));
  }

  /// @copydoc quordalvane::NSStream::scheduleInRunLoop
  void scheduleInRunLoop(NSRunLoop& runLoop, std::string_view mode) override {
    next_->scheduleInRunLoop(runLoop, mode);
  }

  /// @copydoc quordalvane::NSStream::removeFromRunLoop
  void removeFromRunLoop(NSRunLoop& runLoop, std::string_view mode) override {
    next_->removeFromRunLoop(runLoop, mode);
  }

  /// @copydoc quordalvane::NSStream::open
  void open() override { next_->open(); }

  /// @copydoc quordalvane::NSStream::close
  void close() override { next_->close(); }

  /// @copydoc quordalvane::NSStream::waitUntilReady
  void waitUntilReady(double seconds) override { next_->waitUntilReady(seconds); }

 protected:
  /// Returns the stream that receives the calls.
  Stream& next() { return *next_; }

 private:
  const std::shared_ptr<Stream> next_;
};

/// Passes every call on to another input stream.
class ForwardingInputStream : public ForwardingStream<NSInputStream> {
 public:
  using ForwardingStream::ForwardingStream;

  bool hasBytesAvailable() override { return next().hasBytesAvailable(); }
  bool expectsBytes() override { return next().expectsBytes(); }
  std::int64_t read(std::uint8_t* buffer, std::size_t maxLength) override {
    return next().read(buffer, maxLength);
  }
};

/// Passes every call on to another output stream.
class ForwardingOutputStream : public ForwardingStream<NSOutputStream> {
 public:
  using ForwardingStream::ForwardingStream;

  bool hasSpaceAvailable() override { return next().hasSpaceAvailable(); }
  void setMayBeAnswered(bool mayBeAnswered) override { next().setMayBeAnswered(mayBeAnswered); }
  std::int64_t write(const std::uint8_t* buffer, std::size_t maxLength) override {
    return next().write(buffer, maxLength);
  }
};

/// Passes every call on to another session, and returns the streams of that session.
class ForwardingSession : public EASession {
 public:
  /// `next` must not be null; this object keeps it alive.
  explicit ForwardingSession(std::shared_ptr<EASession> next) : next_(std::move(next)) {}

  std::shared_ptr<NSInputStream> inputStream() override { return next_->inputStream(); }
  std::shared_ptr<NSOutputStream> outputStream() override { return next_->outputStream(); }
  void abandon() override { next_->abandon(); }

 private:
  const std::shared_ptr<EASession> next_;
};

/// Passes every call on to another accessory, and returns the sessions of that accessory.
class ForwardingAccessory : public EAAccessory {
 public:
  /// `next` must not be null; this object keeps it alive.
  explicit ForwardingAccessory(std::shared_ptr<EAAccessory> next) : next_(std::move(next)) {}

  std::optional<std::string> name() override { return next_->name(); }
  std::optional<std::string> serialNumber() override { return next_->serialNumber(); }
  std::optional<std::string> modelNumber() override { return next_->modelNumber(); }
  std::optional<std::string> manufacturer() override { return next_->manufacturer(); }
  std::vector<std::string> protocolStrings() override { return next_->protocolStrings(); }
  std::uint64_t connectionID() override { return next_->connectionID(); }
  ProofKind proof() override { return next_->proof(); }
  std::string description() override { return next_->description(); }
  bool isConnected() override { return next_->isConnected(); }
  void noticeLoss() override { next_->noticeLoss(); }
  std::shared_ptr<EASession> openSession(const std::string& protocol) override {
    return next_->openSession(protocol);
  }

 private:
  const std::shared_ptr<EAAccessory> next_;
};

/// Passes every call on to another manager of accessories.
class ForwardingAccessoryManager : public EAAccessoryManager {
 public:
  /// `next` must outlive this object.
  explicit ForwardingAccessoryManager(EAAccessoryManager& next) : next_(next) {}

  std::vector<std::shared_ptr<EAAccessory>> connectedAccessories() override {
    return next_.connectedAccessories();
  }
  bool readsAddresses() override { return next_.readsAddresses(); }
  std::string addressOf(EAAccessory& accessory) override { return next_.addressOf(accessory); }

 private:
  EAAccessoryManager& next_;
};

/// Passes every call on to another device.
class ForwardingDevice : public UIDevice {
 public:
  /// `next` must outlive this object.
  explicit ForwardingDevice(UIDevice& next) : next_(next) {}

  std::string systemVersion() override { return next_.systemVersion(); }

 private:
  UIDevice& next_;
};

/// Passes every call on to another thread handle.
class ForwardingThread : public NSThread {
 public:
  /// `next` must not be null; this object keeps it alive.
  explicit ForwardingThread(std::shared_ptr<NSThread> next) : next_(std::move(next)) {}

  bool start() override { return next_->start(); }
  void cancel() override { next_->cancel(); }
  bool performAndWait(std::function<void()> routine) override {
    return next_->performAndWait(std::move(routine));
  }

 private:
  const std::shared_ptr<NSThread> next_;
};

/// Passes every call on to another platform, and returns the parts of that platform.
class ForwardingPlatform : public Platform {
 public:
  /// `next` must not be null; this object keeps it alive.
  explicit ForwardingPlatform(std::shared_ptr<Platform> next) : next_(std::move(next)) {}

  EAAccessoryManager& sharedAccessoryManager() override { return next_->sharedAccessoryManager(); }
  UIDevice& currentDevice() override { return next_->currentDevice(); }
  Clock& clock() override { return next_->clock(); }
  NSRunLoop& currentRunLoop() override { return next_->currentRunLoop(); }
  std::shared_ptr<NSThread> makeThread(std::function<void()> body) override {
    return next_->makeThread(std::move(body));
  }
  bool isMainThread() override { return next_->isMainThread(); }
  void ignoreSigPipe() override { next_->ignoreSigPipe(); }
  std::uint32_t randomNumber() override { return next_->randomNumber(); }

 private:
  const std::shared_ptr<Platform> next_;
};

}  // namespace quordalvane
