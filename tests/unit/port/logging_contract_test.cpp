#include <gtest/gtest.h>

#include "iphone-IOPort/LogStatement.h"
#include "platform/Forwarding.h"
#include "tests/support/LogCapture.h"
#include "tests/unit/port/Descriptions.h"
#include "tests/unit/port/Printer.h"

namespace quordalvane::test {
namespace {

/// A printer that answers everything, in any emulation.
Scenario answeringPrinter(std::int32_t emulation) {
  Scenario scenario = Scenario::in(emulation, 1000);
  scenario.endMillis = 1000;
  scenario.dataTimeoutSeconds = 5;
  scenario.script.wheneverAsked(lineRequest, whole(lineStatus()))
      .wheneverAsked(drawerQuery, whole(bytes("12")))
      .wheneverAsked(coverQuery, whole(bytes("12")))
      .wheneverAsked(paperQuery, whole(bytes("12")))
      .wheneverAsked(bytes("1b 23 2a 0a 00"), whole(bytes("1b 23 2a 56 0a 00")))
      .wheneverAsked(bytes("1d 49 41"), whole(bytes("5f 56 00")))
      .wheneverAsked(bytes("1b 23 2c 31 0a 00"), whole(bytes("1b 23 2c 31 00 00 0a")))
      .wheneverAsked(bytes("1b 23 2c 32 0a 00"), whole(bytes("1b 23 2c 32 00 00 0a")))
      .wheneverAsked(ascii("AT*AILBA?\r"), whole(ascii("\r\n*AILBA:0011223344FF\r\n\r\nOK\r\n")));
  return scenario;
}

/// For each emulation: a printer that answers, a printer that does not answer, and a lost link.
std::vector<Scenario> manyScenarios() {
  std::vector<Scenario> scenarios;
  for (const std::int32_t emulation : {unknownEmulation, lineMode, escPos}) {
    scenarios.push_back(answeringPrinter(emulation));
    scenarios.push_back(Scenario::in(emulation, 1000));
    scenarios.push_back(Scenario::in(emulation, 1000));
    scenarios.back().script.isLost(0.25);
  }
  return scenarios;
}

bool isException(const std::string& result) {
  return result.starts_with("PortException") || result.starts_with("std::");
}

/// Returns the methods that were entered and not left, the innermost last; "mismatch" if an exit
/// does not fit its entry.
std::vector<std::string> leftOpen(const std::vector<Line>& lines) {
  std::vector<std::string> open;
  for (const Line& line : lines) {
    if (line.text.starts_with("Start ")) {
      open.push_back(line.method);
    } else if (line.text.starts_with("End ")) {
      if (open.empty() || open.back() != line.method) {
        return {"mismatch"};
      }
      open.pop_back();
    }
  }
  return open;
}

TEST(LoggingContract, EachEntryRecordHasExactlyOneExitRecord) {
  for (const Scenario& scenario : manyScenarios()) {
    for (const Call& call : allCalls()) {
      const Outcome run = scenario.run(call);
      if (!isException(run.result)) {
        EXPECT_TRUE(leftOpen(run.lines).empty()) << call.name << "\n" << describe(scenario);
      }
    }
  }
}

TEST(LoggingContract, AnOperationThatThrowsLogsNoExitRecord) {
  // The link is lost after this number of bytes. If it were lost sooner, the call's own write would
  // fail without an exception.
  const std::pair<Call, std::size_t> losses[] = {
      {beginCheckedBlock(), 0}, {endCheckedBlock(), 7}, {getOnlineStatus(), 3}};
  for (const auto& [call, bytes] : losses) {
    Scenario scenario = answeringPrinter(lineMode);
    scenario.script.isLostAfterBytes(bytes);
    const Outcome run = scenario.run(call);
    ASSERT_TRUE(isException(run.result)) << call.name << ": " << run.result;
    EXPECT_EQ(leftOpen(run.lines).size(), 1U) << "the caller's; the call that threw has its exit";
  }
}

TEST(LoggingContract, NoRecordAndNoDescriptionIsMadeIfLoggingIsOff) {
  const std::uint64_t handedOver = LogWriter::sharedInstance().statistics().handedOver;
  const std::uint64_t descriptions = descriptionsMade();
  for (Scenario scenario : manyScenarios()) {
    scenario.logging = false;
    for (const Call& call : allCalls()) {
      EXPECT_EQ(view(scenario.run(call).lines, {About::Log}), "");
    }
  }
  EXPECT_EQ(LogWriter::sharedInstance().statistics().handedOver, handedOver);
  EXPECT_EQ(descriptionsMade(), descriptions);
}

TEST(LoggingContract, NoDescriptionIsMadeIfItsLevelIsOff) {
  const std::uint64_t descriptions = descriptionsMade();
  for (Scenario scenario : manyScenarios()) {
    scenario.levels = {1};
    for (const Call& call : allCalls()) {
      scenario.run(call);
    }
  }
  EXPECT_EQ(descriptionsMade(), descriptions);
}

TEST(LoggingContract, RecordsAndDescriptionsAreMadeIfLoggingIsOn) {
  const std::uint64_t handedOver = LogWriter::sharedInstance().statistics().handedOver;
  const std::uint64_t descriptions = descriptionsMade();
  answeringPrinter(lineMode).runOnPort(inTurn(allCalls()));
  EXPECT_GT(LogWriter::sharedInstance().statistics().handedOver, handedOver + 100);
  EXPECT_GT(descriptionsMade(), descriptions);
}

/// Switches logging on or off between two log statements of `write:`, when it calls
/// `ignoreSigPipe`.
class SwitchesLogging : public ForwardingPlatform {
 public:
  SwitchesLogging(std::shared_ptr<Platform> next, bool on)
      : ForwardingPlatform(std::move(next)), on_(on) {}
  void ignoreSigPipe() override {
    LogWriter::setLogging(on_);
    ForwardingPlatform::ignoreSigPipe();
  }

 private:
  const bool on_;
};

TEST(LoggingContract, EveryStatementChecksWhetherLoggingIsOn) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.layer = [](std::shared_ptr<Platform> next) {
    return std::make_shared<SwitchesLogging>(std::move(next), false);
  };
  EXPECT_EQ(scenario.run(write(bytes("41"))).records("write:"), "Start | <41>\n");
  scenario.logging = false;
  scenario.layer = [](std::shared_ptr<Platform> next) {
    return std::make_shared<SwitchesLogging>(std::move(next), true);
  };
  EXPECT_EQ(scenario.run(write(bytes("41"))).records("write:"),
            "Write | EAAccessory, size: 1, command: <41>\nEnd | <41>, -> 1\n");
}

TEST(LoggingContract, EveryRecordNamesThePortTheSourceAndTheMethod) {
  ScriptedWorld world;
  const auto port =
      ExternalAccessoryPort::initWithPortName("BT:", "", 0, ZKEmulationQuorLine, world.platform());
  const Logging logging(true);
  LogCapture::instance().clear();
  port->open();
  port->startDataCancel();
  port->close();
  const std::vector<LogRecord> records = LogCapture::instance().take();
  ASSERT_GT(records.size(), 20U);
  for (const LogRecord& record : records) {
    EXPECT_EQ(record.object, formatMessage("%p", port));
    EXPECT_TRUE(std::string(record.file).starts_with("iphone-IOPort/")) << record.file;
    EXPECT_TRUE(std::string(record.file).ends_with(".cpp"));
    EXPECT_GT(record.line, 0);
    EXPECT_TRUE(std::string(record.method).starts_with("-[ExternalAccessoryPort "));
    EXPECT_TRUE(std::string(record.method).ends_with("]"));
    EXPECT_EQ(record.level, 0);
  }
}

TEST(LoggingContract, EveryRecordHasAKnownType) {
  for (const Scenario& scenario : manyScenarios()) {
    const Outcome run = scenario.runOnPort(inTurn({getOnlineStatus(), read(5), startDataCancel()}));
    EXPECT_EQ(run.all().find("unexpected type"), std::string::npos);
  }
}

TEST(LoggingContract, AccessorsAndDestructionLogNothing) {
  ScriptedWorld world;
  auto port =
      ExternalAccessoryPort::initWithPortName("BT:", "", 0, ZKEmulationQuorLine, world.platform());
  const Logging logging(true);
  world.trace().clear();
  port->setName(port->name());
  port->setHoldPrintTimeoutMillis(port->holdPrintTimeoutMillis());
  port->dipSwitchInformation();
  port->firmwareInformation();
  port->thread71();
  port.reset();
  EXPECT_EQ(view(world.trace().lines(), {About::Log}), "");
}

}  // namespace
}  // namespace quordalvane::test
