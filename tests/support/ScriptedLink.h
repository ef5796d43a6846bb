#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <span>

#include "backends/AccessoryIdentity.h"
#include "tests/support/Script.h"
#include "tests/support/VirtualPlatform.h"

namespace quordalvane::test {

/// A link that follows its script, in virtual time.
class ScriptedLink {
 public:
  ScriptedLink(Script script, test::VirtualClock& clock);

  /// The operation under test begins: times and counts start here.
  void start();

  /// Begins the next of the script's attempts. Called at the beginning of each `write:`.
  void beginAttempt();

  /// Called before each reading of the wall clock.
  void beforeClockReading();

  bool isConnected();
  bool hasSpace();
  bool hasBytes();
  bool expectsBytes() const;
  void setMayBeAnswered(bool mayBeAnswered) { mayBeAnswered_ = mayBeAnswered; }
  std::int64_t write(std::span<const std::uint8_t> data);
  std::int64_t read(std::span<std::uint8_t> buffer);
  void waitForSpace(double seconds);
  void waitForBytes(double seconds);

 private:
  test::Instant instant(double seconds) const;
  bool isLost() const;
  void arriveLater(const Reply& reply, test::Instant from);
  void answer(std::span<const std::uint8_t> data);
  Script::Answer* nextAnswer();
  void waitUntil(test::Instant ready, double seconds);

  Script script_;
  test::VirtualClock& clock_;
  test::Instant start_{0};
  bool started_ = false;
  std::multimap<test::Instant, Bytes> arriving_;
  Bytes unanswered_;
  bool mayBeAnswered_ = true;
  // Whether a request that may be answered was written after the last read that returned bytes.
  bool isAsked_ = false;
  std::optional<std::size_t>
      budget_;  // the bytes that this attempt may still send; empty means all
  std::size_t attempt_ = 0;
  std::size_t written_ = 0;
  std::size_t writes_ = 0;
  std::size_t reads_ = 0;
  std::size_t questions_ = 0;
  std::size_t readings_ = 0;
  std::size_t calls_ = 0;
};

/// An accessory at the end of a scripted link.
class ScriptedAccessory : public IdentifiedAccessory {
 public:
  ScriptedAccessory(AccessoryIdentity identity, std::shared_ptr<ScriptedLink> link)
      : IdentifiedAccessory(std::move(identity)), link_(std::move(link)) {}

  bool isConnected() override { return link_->isConnected(); }
  std::shared_ptr<EASession> openSession(const std::string& protocol) override;

 private:
  const std::shared_ptr<ScriptedLink> link_;
};

}  // namespace quordalvane::test
