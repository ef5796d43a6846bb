#include "tests/support/Fault.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace quordalvane::test {
namespace {

/// The streams return a fixed count, whatever they are offered.
class FixedCount : public Fault {
 public:
  FixedCount(std::string name, std::int64_t count) : Fault(std::move(name)), count_(count) {}

  bool befalls(PlatformCall call) const override {
    return call == PlatformCall::Write || call == PlatformCall::Read;
  }
  std::int64_t write(NSOutputStream&, const std::uint8_t*, std::size_t) override { return count_; }
  std::int64_t read(NSInputStream&, std::uint8_t*, std::size_t) override { return count_; }

 private:
  const std::int64_t count_;
};

class OneByteAtATime : public FixedCount {
 public:
  OneByteAtATime() : FixedCount("one-byte", 1) {}
  std::int64_t write(NSOutputStream& next, const std::uint8_t* buffer, std::size_t) override {
    return next.write(buffer, 1);
  }
  std::int64_t read(NSInputStream& next, std::uint8_t* buffer, std::size_t) override {
    return next.read(buffer, 1);
  }
};

class AllButOneByte : public FixedCount {
 public:
  AllButOneByte() : FixedCount("all-but-one-byte", 0) {}
  std::int64_t write(NSOutputStream& next, const std::uint8_t* buffer, std::size_t n) override {
    return next.write(buffer, n - 1);
  }
  std::int64_t read(NSInputStream& next, std::uint8_t* buffer, std::size_t n) override {
    return next.read(buffer, n - 1);
  }
};

class MoreThanOffered : public FixedCount {
 public:
  MoreThanOffered() : FixedCount("more-than-offered", 0) {}
  std::int64_t write(NSOutputStream&, const std::uint8_t*, std::size_t count) override {
    return static_cast<std::int64_t>(count) + 1;
  }
  std::int64_t read(NSInputStream&, std::uint8_t* buffer, std::size_t count) override {
    std::fill_n(buffer, count, 0xa5);
    return static_cast<std::int64_t>(count) + 1;
  }
};

class NoSpace : public Fault {
 public:
  NoSpace() : Fault("no-space") {}
  bool befalls(PlatformCall call) const override { return call == PlatformCall::Space; }
  bool hasSpace(NSOutputStream&) override { return false; }
};

class NoBytes : public Fault {
 public:
  NoBytes() : Fault("no-bytes") {}
  bool befalls(PlatformCall call) const override { return call == PlatformCall::HasBytes; }
  bool hasBytes(NSInputStream&) override { return false; }
};

/// A stream that reports that it is ready, but has no bytes.
class BytesThatAreNotThere : public Fault {
 public:
  BytesThatAreNotThere() : Fault("bytes-that-are-not-there") {}
  bool befalls(PlatformCall call) const override { return call == PlatformCall::HasBytes; }
  bool hasBytes(NSInputStream&) override { return true; }
};

class NoSession : public Fault {
 public:
  NoSession() : Fault("no-session") {}
  bool befalls(PlatformCall call) const override { return call == PlatformCall::Session; }
  std::shared_ptr<EASession> openSession(EAAccessory&, const std::string&) override {
    return nullptr;
  }
};

class Disconnected : public Fault {
 public:
  Disconnected() : Fault("disconnect") {}
  bool befalls(PlatformCall call) const override { return call == PlatformCall::Connected; }
  bool isConnected(EAAccessory&) override { return false; }
};

/// The calls of `isConnected` return false, true, false, true, and so on.
class Reconnecting : public Fault {
 public:
  Reconnecting() : Fault("reconnect") {}
  bool befalls(PlatformCall call) const override { return call == PlatformCall::Connected; }
  bool isConnected(EAAccessory&) override { return asked_++ % 2 != 0; }

 private:
  unsigned asked_ = 0;
};

class RaisesStandard : public Fault {
 public:
  RaisesStandard() : Fault("standard-exception") {}
  bool befalls(PlatformCall) const override { return true; }
  void before() override { throw std::runtime_error("fault"); }
};

class RaisesAnother : public Fault {
 public:
  RaisesAnother() : Fault("another-exception") {}
  bool befalls(PlatformCall) const override { return true; }
  void before() override { throw Surprise(); }
};

class ClockJumps : public Fault {
 public:
  ClockJumps(std::string name, std::int64_t seconds) : Fault(std::move(name)), seconds_(seconds) {}
  bool befalls(PlatformCall call) const override { return call == PlatformCall::Clock; }
  std::int64_t clockStep() const override { return seconds_; }
  bool mayLast() const override { return seconds_ > 0; }

 private:
  const std::int64_t seconds_;
};

class NoThread : public Fault {
 public:
  NoThread() : Fault("no-thread") {}
  bool befalls(PlatformCall call) const override { return call == PlatformCall::MakeThread; }
  std::shared_ptr<NSThread> makeThread(Platform&, std::function<void()>) override {
    return nullptr;
  }
};

class ThreadDoesNotStart : public Fault {
 public:
  ThreadDoesNotStart() : Fault("thread-does-not-start") {}
  bool befalls(PlatformCall call) const override { return call == PlatformCall::StartThread; }
  bool start(NSThread&) override { return false; }
};

class ThreadTakesNothing : public Fault {
 public:
  ThreadTakesNothing() : Fault("thread-takes-nothing") {}
  bool befalls(PlatformCall call) const override { return call == PlatformCall::Carry; }
  bool performAndWait(NSThread&, std::function<void()>) override { return false; }
};

template <typename Kind>
std::shared_ptr<Fault> make() {
  return std::make_shared<Kind>();
}

}  // namespace

const std::vector<MakeFault>& allFaults() {
  static const std::vector<MakeFault> faults = {
      [] { return std::make_shared<FixedCount>("-1", -1); },
      [] { return std::make_shared<FixedCount>("-2", -2); },
      [] { return std::make_shared<FixedCount>("0", 0); },
      make<OneByteAtATime>,
      make<AllButOneByte>,
      make<MoreThanOffered>,
      make<NoSpace>,
      make<NoBytes>,
      make<BytesThatAreNotThere>,
      make<NoSession>,
      make<Disconnected>,
      make<Reconnecting>,
      make<RaisesStandard>,
      anotherException,
      [] { return std::make_shared<ClockJumps>("clock-jumps-ahead", 3600); },
      [] { return std::make_shared<ClockJumps>("clock-jumps-back", -1); },
  };
  return faults;
}

const std::vector<MakeFault>& threadFaults() {
  static const std::vector<MakeFault> faults = {make<NoThread>, make<ThreadDoesNotStart>,
                                                make<ThreadTakesNothing>};
  return faults;
}

std::shared_ptr<Fault> anotherException() {
  return make<RaisesAnother>();
}

}  // namespace quordalvane::test
