// Ports and jobs on the threads and run loops of the real framework. A virtual printer is at the
// other end of the link.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <string_view>

#include "backends/handheld/HandheldPlatform.h"
#include "backends/posix/LinkAccessory.h"
#include "backends/posix/PosixPlatform.h"
#include "job/PrintJob.h"
#include "platform/Forwarding.h"
#include "tests/handheld/Accessories.h"
#include "tests/handheld/ServedPrinter.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Replay.h"
#include "tests/support/Trace.h"

namespace quordalvane::test {
namespace {

constexpr std::string_view receipt = "TOTAL 12.50\n";

std::vector<std::uint8_t> bytesOf(std::string_view text) {
  return {text.begin(), text.end()};
}

std::shared_ptr<ExternalAccessoryPort> portOn(std::shared_ptr<Platform> platform,
                                              ZKEmulation emulation) {
  return ExternalAccessoryPort::initWithPortName("BT:", "", 10000, emulation, std::move(platform));
}

/// The answers are so late that the port always waits for them. So the log records are the same in
/// each run.
simulator::PrinterBuilder lateAnswers() {
  return simulator::PrinterBuilder().fault("late-reply", "20");
}

class HandheldJob : public testing::TestWithParam<ZKEmulation> {
 protected:
  HandheldJob() {
    plugIn({.connect = [this] { return printer.connect(); }});
  }
  ~HandheldJob() override { unplug(); }

  PrintOutcome print(std::shared_ptr<Platform> platform) {
    const auto port = portOn(std::move(platform), GetParam());
    EXPECT_TRUE(port->open());
    const auto result = PrintJob(port, {.proof = ProofKind::Block}).run(bytesOf(receipt));
    port->close();
    EXPECT_EQ(result.reason, "");
    return result.outcome;
  }

  /// The log records of one job on the platform. Addresses are replaced, because they differ from
  /// run to run.
  std::vector<std::string> recordsOf(const std::shared_ptr<Platform>& platform);

  ServedPrinter printer{lateAnswers()};
};

TEST_P(HandheldJob, IsPrintedFromTheMainThread) {
  EXPECT_EQ(print(std::make_shared<handheld::HandheldPlatform>()), PrintOutcome::Printed);
  EXPECT_EQ(printer.printed(), bytesOf(receipt));
}

TEST_P(HandheldJob, IsPrintedFromAnotherThread) {
  std::thread([this] {
    EXPECT_EQ(print(std::make_shared<handheld::HandheldPlatform>()), PrintOutcome::Printed);
  }).join();
  EXPECT_EQ(printer.printed(), bytesOf(receipt));
}

/// Returns the captured log records with `<address>` in place of each address.
std::vector<std::string> recordsWithoutAddresses() {
  static const std::regex address("0x[0-9a-f]+");
  std::vector<std::string> lines;
  for (const LogRecord& record : LogCapture::instance().take()) {
    lines.push_back(shownRecord(record.type, record.level, record.method,
                                std::regex_replace(record.message, address, "<address>")));
  }
  return lines;
}

/// The texts of the accessory of the stand-in service.
AccessoryIdentity asPluggedIn() {
  AccessoryIdentity identity;
  identity.name = "Virtual";
  identity.serialNumber = "0001";
  identity.modelNumber = "V1";
  identity.connectionID = 7;
  return identity;
}

/// Log records contain the system's version, so this class gives both platforms the same version.
class SameVersion : public ForwardingPlatform, private UIDevice {
 public:
  using ForwardingPlatform::ForwardingPlatform;
  UIDevice& currentDevice() override { return *this; }

 private:
  std::string systemVersion() override { return "12.5.7"; }
};

std::vector<std::string> HandheldJob::recordsOf(const std::shared_ptr<Platform>& platform) {
  LogCapture::instance().clear();
  // A port thread would write log records at random moments. A port that is not created on the main
  // thread has no port thread.
  std::thread([&] {
    EXPECT_EQ(print(std::make_shared<SameVersion>(platform)), PrintOutcome::Printed);
  }).join();
  return recordsWithoutAddresses();
}

TEST_P(HandheldJob, LogsTheSameRecordsAsAJobOnThePosixPlatform) {
  const auto handheld = std::make_shared<handheld::HandheldPlatform>();
  const auto descriptors = std::make_shared<posix::PosixPlatform>();
  ServedPrinter another{lateAnswers()};
  descriptors->attach(std::make_shared<posix::LinkAccessory>(asPluggedIn(), [&another] {
    return posix::Descriptor(another.connect(), posix::Descriptor::Kind::Socket);
  }));
  const Logging logging(true);
  // On a busy machine an answer may arrive before the port waits for it, and then the records
  // differ.
  std::vector<std::string> ours;
  std::vector<std::string> theirs;
  for (int attempt = 0; attempt < 5 && (attempt == 0 || ours != theirs); ++attempt) {
    ours = recordsOf(handheld);
    theirs = recordsOf(descriptors);
  }
  EXPECT_GT(ours.size(), 100U);
  EXPECT_EQ(ours, theirs);
}

INSTANTIATE_TEST_SUITE_P(Emulation, HandheldJob,
                         testing::Values(ZKEmulationQuorLine, ZKEmulationESCPOS));

/// A platform without the pauses of a port's open and close.
class SleeplessPlatform : public ForwardingPlatform {
 public:
  using ForwardingPlatform::ForwardingPlatform;
  Clock& clock() override { return clock_; }

 private:
  class Sleepless : public ForwardingClock {
   public:
    using ForwardingClock::ForwardingClock;
    void usleep(std::uint64_t /*microseconds*/) override {}
  };
  Sleepless clock_{ForwardingPlatform::clock()};
};

TEST(HandheldPort, CanBeOpenedAndClosedThousandsOfTimesOnTheMainThread) {
  ServedPrinter printer;
  plugIn({.connect = [&printer] { return printer.connect(); }});
  const auto platform =
      std::make_shared<SleeplessPlatform>(std::make_shared<handheld::HandheldPlatform>());
  const std::uint64_t count = caseCount("QUOR_HANDHELD_CYCLES", 10000);
  RecordProperty("cases", std::to_string(count));
  for (std::uint64_t i = 0; i < count; ++i) {
    const auto port = portOn(platform, ZKEmulationESCPOS);
    ASSERT_TRUE(port->open()) << i;
    ASSERT_TRUE(port->isConnected()) << i;
    port->close();
  }
  unplug();
}

}  // namespace
}  // namespace quordalvane::test
