#include <gtest/gtest.h>

#include "tests/unit/port/Printer.h"

namespace quordalvane::test {
namespace {

const Bytes addressQuery = ascii("AT*AILBA?\r");
const Bytes fine = ascii("\r\nOK\r\n");
const Bytes failed = ascii("\r\nERROR\r\n");
const Bytes address = ascii("\r\n*AILBA:0011223344FF\r\n");

Scenario replying(const Bytes& reply, double after = 0) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.whenAsked(addressQuery, {{reply, after}});
  return scenario;
}

Scenario receiving(const Bytes& chunk) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.delivers(chunk);
  return scenario;
}

const std::string reader = "getPrinterResponseWithSettingTitle:settingLength:timeoutMillis:";

TEST(AtCommandMode, IsEnteredAfterGuardTimesAndConfirmedByTheModulesAddress) {
  const Outcome run = replying(address + fine).run(enterATMode());
  EXPECT_EQ(run.result, "true");
  EXPECT_EQ(run.wire(),
            "usleep 1000000\n"
            "output.write <2f 2f 2f> -> 3\n"
            "usleep 1500000\n"
            "output.write <41 54 2a 41 49 4c 42 41 3f 0d> -> 10\n"
            "input.read 128 -> " +
                shown(address + fine) + "\n");
  EXPECT_EQ(run.records("enterATMode"), "Start |\nEnd | -> 1\n");
}

TEST(AtCommandMode, FailsWhenTheEscapeSequenceCannotBeWritten) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.writeReturns(1, -1);
  const Outcome run = scenario.run(enterATMode());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.records("enterATMode"), text(R"(
    Start |
    Error | Fail to [self writeWithRetry:enterATModeCmd]: <self>, <address>
    End | -> 0
  )"));
}

TEST(AtCommandMode, FailsWhenTheAddressQueryCannotBeWritten) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.writeReturns(2, -1);
  const Outcome run = scenario.run(enterATMode());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.records("enterATMode"), text(R"(
    Start |
    Error | Fail to [self writeWithRetry:getMACAddrCmd]: <self>, <address>
    End | -> 0
  )"));
}

TEST(AtCommandMode, FailsWhenTheModuleAnswersWithAnError) {
  const Outcome run = replying(failed).run(enterATMode());
  EXPECT_EQ(run.result, "false");
  EXPECT_EQ(run.records("enterATMode"),
            "Start |\nError | [getMACAddrResult hasPrefix:settingTitle] == NO): \r\nERROR\r\n, "
            "*AILBA:\nEnd | -> 0\n");
}

TEST(AtCommandMode, FailsWhenTheModuleDoesNotAnswer) {
  const Outcome run = Scenario::in(lineMode).run(enterATMode());
  EXPECT_EQ(run.result, "false");
  EXPECT_NE(
      run.records("enterATMode")
          .find("Error | [getMACAddrResult hasPrefix:settingTitle] == NO): (null), *AILBA:\n"),
      std::string::npos);
  EXPECT_NE(run.records(reader).find("Error | interval > TIMEOUT_SEC, "), std::string::npos);
}

TEST(AtCommandMode, ThrowsARangeErrorIfTheModuleAnswersOkWithoutAWholeAddress) {
  for (const Bytes& reply : {fine, ascii("\r\n*AILBA:0011") + fine}) {
    const Outcome run = replying(reply).run(enterATMode());
    EXPECT_EQ(run.result, "std::out_of_range");
    EXPECT_EQ(run.records("enterATMode"), "Start |\n");
  }
}

TEST(ModuleReply, IsTheTitleOfTheSettingPlusTheRequestedNumberOfCharacters) {
  const Outcome run = receiving(address + fine).run(getPrinterResponse("*AILBA:", 12, 10000));
  EXPECT_EQ(run.result, "\"*AILBA:0011223344FF\"");
  EXPECT_EQ(run.records(reader),
            "Start | *AILBA:, 12, 10000\n"
            "Process | printerResponse: \r\n*AILBA:0011223344FF\r\n\r\nOK\r\n\n"
            "Process | [printerResponse rangeOfString:responseOK2].location != NSNotFound, "
            "\r\n*AILBA:0011223344FF\r\n\r\nOK\r\n, \r\nOK\r\n\n"
            "End | *AILBA:, 12, 10000, -> *AILBA:0011223344FF\n");
}

TEST(ModuleReply, IsTheErrorTextEvenIfOtherTextArrivesFirst) {
  const Outcome run = receiving(fine + ascii("x") + failed).run(getPrinterResponse("T", 1, 1000));
  EXPECT_EQ(run.result, "\"\r\nERROR\r\n\"") << "the error is looked for first";
  EXPECT_NE(run.records(reader).find("[printerResponse rangeOfString:responseNG2].location != "
                                     "NSNotFound, \r\nOK\r\nx\r\nERROR\r\n, \r\nERROR\r\n\n"),
            std::string::npos);
  EXPECT_TRUE(run.records(reader).ends_with("End | T, 1, 1000, -> \r\nERROR\r\n\n"));
}

TEST(ModuleReply, IsJustOkIfNoSettingTitleIsGiven) {
  const Outcome run = receiving(ascii("a") + fine).run(getPrinterResponse({}, 5, 1000));
  EXPECT_EQ(run.result, "\"\r\nOK\r\n\"");
  EXPECT_TRUE(run.records(reader).starts_with("Start | (null), 5, 1000\n"));
  EXPECT_TRUE(run.records(reader).ends_with(
      "Process | settingTitle == nil, 0x0\nEnd | (null), 5, 1000, -> \r\nOK\r\n\n"));
}

TEST(ModuleReply, IsEverythingFromTheSettingTitleOnIfTheRequestedLengthIsZero) {
  const Outcome run =
      receiving(ascii("abTITLE=7") + fine).run(getPrinterResponse("TITLE", 0, 1000));
  EXPECT_EQ(run.result, "\"TITLE=7\r\nOK\r\n\"");
  EXPECT_TRUE(run.records(reader).ends_with(
      "Process | settingLength == 0, 0\nEnd | TITLE, 0, 1000, -> TITLE=7\r\nOK\r\n\n"));
}

TEST(ModuleReply, ThrowsARangeErrorIfTheSettingIsIncomplete) {
  const auto result = [](const std::string& text, const char* title, std::int32_t length) {
    return receiving(ascii(text) + fine).run(getPrinterResponse(title, length, 1000)).result;
  };
  EXPECT_EQ(result("T12", "T", 8), "\"T12\r\nOK\r\n\"") << "up to the very end";
  EXPECT_EQ(result("T12", "T", 9), "std::out_of_range");
  EXPECT_EQ(result("T12", "U", 1), "std::out_of_range");
  EXPECT_EQ(result("T12", "U", 0), "std::out_of_range");
  EXPECT_EQ(result("T12", "T", -1), "std::out_of_range");
  EXPECT_EQ(result("T12", "T", INT32_MAX), "std::out_of_range");
  EXPECT_EQ(result("T12", "T", INT32_MIN), "std::out_of_range");
}

TEST(ModuleReply, UsesTheFirstOccurrenceOfTheSettingTitle) {
  EXPECT_EQ(receiving(ascii("T1T2") + fine).run(getPrinterResponse("T", 1, 1000)).result, "\"T1\"");
}

TEST(ModuleReply, HasOneCharacterForEachByte) {
  const Outcome run =
      receiving(bytes("80 54 ff 41 42") + fine).run(getPrinterResponse("T", 2, 1000));
  EXPECT_EQ(run.result,
            "\"T\xef\xbf\xbd"
            "A\"");
}

TEST(ModuleReply, IsNotFoundIfItArrivesInTwoPieces) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.delivers(ascii("\r\nO")).delivers(ascii("K\r\n"), 0.05);
  EXPECT_EQ(scenario.run(getPrinterResponse({}, 0, 1000)).result, "none");
}

TEST(ModuleReply, IsFoundInALaterRead) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.delivers(ascii("noise")).delivers(fine, 0.7);
  const Outcome run = scenario.run(getPrinterResponse({}, 0, 1000));
  EXPECT_EQ(run.result, "\"\r\nOK\r\n\"");
}

TEST(ModuleReply, IsNullAtOnceWhenTheFirstReadFails) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.isLost();
  const Outcome run = scenario.run(getPrinterResponse("T", 1, 10000));
  EXPECT_EQ(run.result, "none");
  EXPECT_EQ(run.wire(), "");
  EXPECT_EQ(run.records(reader), text(R"(
    Start | T, 1, 10000
    Error | Fail to [[self read:512] retain]: <self>
    End | T, 1, 10000, -> 0x0
  )"));
}

TEST(ModuleReply, IsNullWhenALaterReadFails) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.isLost(0.4);
  const Outcome run = scenario.run(getPrinterResponse("T", 1, 10000));
  EXPECT_EQ(run.result, "none");
  EXPECT_TRUE(run.records(reader).ends_with(
      "Error | Fail to [[self read:512] retain]: <self>\nEnd | T, 1, 10000, -> 0x0\n"));
}

TEST(ModuleReply, IsAwaitedForAWholeNumberOfSecondsAndAtLeastOne) {
  const std::pair<std::int32_t, int> rows[] = {{10000, 10}, {1999, 1}, {1000, 1},      {999, 1},
                                               {0, 1},      {-5, 1},   {INT32_MIN, 1}, {2000, 2}};
  for (const auto& [millis, seconds] : rows) {
    const Outcome run = Scenario::in(lineMode).run(getPrinterResponse("T", 1, millis));
    EXPECT_EQ(run.result, "none");
    EXPECT_NE(run.records(reader).find(", " + std::to_string(seconds) + "\nEnd"), std::string::npos)
        << run.records(reader);
  }
}

TEST(ModuleReply, IsAwaitedWithATimeoutThatCountsFractionsOfASecond) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.startsPastTheSecond(900000);
  const Outcome run = scenario.run(getPrinterResponse("T", 1, 1000));
  EXPECT_EQ(run.wire(), text(R"(
    4 x {
      slice for input 0.1
      usleep 200000
    }
    slice for input 0.1
  )"));
  EXPECT_NE(run.records(reader).find("Error | interval > TIMEOUT_SEC, 1.300000, 1\n"),
            std::string::npos)
      << run.records(reader);
}

TEST(ModuleReply, IsStillAwaitedWhenExactlyTheLimitHasPassed) {
  Scenario scenario = Scenario::in(lineMode);
  scenario.script.readReturns(1, 0);
  scenario.script.delivers(ascii("x")).delivers(fine, 1.2).stepsClock(2, 1);
  const Outcome run = scenario.run(getPrinterResponse({}, 0, 1000));
  EXPECT_NE(run.records(reader).find("printerResponse: x"), std::string::npos);
}

}  // namespace
}  // namespace quordalvane::test
