#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/Platform.h"

namespace quordalvane::test {

/// The calls to a platform in which something can go wrong.
enum class PlatformCall { space, write, bytes, read, connected, session, clock, other };

/// One way in which a platform can fail. Each names the calls that it befalls and overrides what
/// becomes of them; all others go on to the platform.
class Fault {
 public:
  explicit Fault(std::string name) : name_(std::move(name)) {}
  virtual ~Fault() = default;

  const std::string& name() const { return name_; }

  virtual bool befalls(PlatformCall call) const = 0;

  /// Whether it may befall every call from one on. A clock that goes back at every reading would
  /// let no wait end, and nothing promises otherwise.
  virtual bool mayLast() const { return true; }

  /// By how many seconds the wall clock jumps at each call that it befalls.
  virtual std::int64_t clockStep() const { return 0; }

  /// Before the call is made; may raise.
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

 private:
  const std::string name_;
};

/// How to make one of each; a fault serves one run.
const std::vector<std::function<std::shared_ptr<Fault>()>>& allFaults();

/// What a FaultyPlatform raises that is no standard exception.
struct Surprise {};

}  // namespace quordalvane::test
