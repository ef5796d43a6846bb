#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/Platform.h"

namespace quordalvane::test {

/// The kinds of platform calls that can fail.
enum class PlatformCall {
  Space,
  Write,
  HasBytes,
  Read,
  Connected,
  Session,
  Clock,
  MakeThread,
  StartThread,
  Carry,
  Other
};

/// One way in which a platform can fail. A fault names the calls that it affects, and overrides
/// their results. All other calls are passed on to the platform.
class Fault {
 public:
  explicit Fault(std::string name) : name_(std::move(name)) {}
  virtual ~Fault() = default;

  const std::string& name() const { return name_; }

  virtual bool befalls(PlatformCall call) const = 0;

  /// Whether the fault may affect a call and all later calls. False for a clock that steps back: if
  /// the clock stepped back at every reading, no wait would end, and no contract promises that such
  /// a wait ends.
  virtual bool mayLast() const { return true; }

  /// By how many seconds the wall clock jumps at each call that the fault affects.
  virtual std::int64_t clockStep() const { return 0; }

  /// Called before the platform's call is made; may throw.
  virtual void before() {}

  virtual bool hasSpace(NSOutputStream& next) { return next.hasSpaceAvailable(); }
  virtual bool hasBytes(NSInputStream& next) { return next.hasBytesAvailable(); }
  virtual bool isConnected(EAAccessory& next) { return next.isConnected(); }
  virtual std::shared_ptr<EASession> openSession(EAAccessory& next, const std::string& protocol) {
    return next.openSession(protocol);
  }
  virtual std::int64_t write(NSOutputStream& next, const std::uint8_t* buffer, std::size_t count) {
    return next.write(buffer, count);
  }
  virtual std::int64_t read(NSInputStream& next, std::uint8_t* buffer, std::size_t count) {
    return next.read(buffer, count);
  }
  virtual std::shared_ptr<NSThread> makeThread(Platform& next, std::function<void()> body) {
    return next.makeThread(std::move(body));
  }
  virtual bool start(NSThread& next) { return next.start(); }
  virtual bool performAndWait(NSThread& next, std::function<void()> routine) {
    return next.performAndWait(std::move(routine));
  }

 private:
  const std::string name_;
};

/// Makes a fault; each fault is for one run.
using MakeFault = std::function<std::shared_ptr<Fault>()>;

/// Every way in which a link, its accessory and its clock can fail.
const std::vector<MakeFault>& allFaults();

/// The ways in which threads can fail, besides throwing; for ports that have a thread.
const std::vector<MakeFault>& threadFaults();

/// Makes a fault that throws a `Surprise` at every call that it affects.
std::shared_ptr<Fault> anotherException();

/// An exception that is not derived from std::exception.
struct Surprise {};

}  // namespace quordalvane::test
