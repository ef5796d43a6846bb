#include "logging/RecordText.h"

#include <gtest/gtest.h>

#include "tests/unit/logging/LogFixtures.h"

namespace quordalvane {
namespace {

using namespace std::chrono;
using test::recordOf;

LogRecord fullRecord() {
  return {.time = sys_days{year{2024} / February / 29} + 23h + 59min + 58s + 1042us + 999ns,
          .thread = 4711,
          .type = ZKLogTypeInternalMethodEnd,
          .level = -1,
          .line = 1234567890123,
          .file = "iphone-IOPort/Session.cpp",
          .method = "-[ExternalAccessoryPort write:]",
          .object = "0x7ffe00001000",
          .message = "\"BT:Shop\"\n\xFF, -> 1"};
}

std::string jsonOf(const LogRecord& record) {
  std::string out;
  appendJsonLine(out, record);
  return out;
}

std::string readableOf(const LogRecord& record) {
  std::string out;
  appendReadableLine(out, record);
  return out;
}

TEST(RecordText, WritesARecordWithAllFieldsAsOneLineOfJson) {
  EXPECT_EQ(jsonOf(fullRecord()),
            R"({"time":"2024-02-29T23:59:58.001042Z","thread":4711,"type":3,)"
            R"("typeName":"InternalMethodEnd","level":-1,"object":"0x7ffe00001000",)"
            R"("file":"iphone-IOPort/Session.cpp","line":1234567890123,)"
            R"("method":"-[ExternalAccessoryPort write:]",)"
            "\"message\":\"\\\"BT:Shop\\\"\\n\xEF\xBF\xBD, -> 1\"}\n");
}

TEST(RecordText, WritesARecordAsOneReadableLineWithoutControlCharacters) {
  EXPECT_EQ(readableOf(fullRecord()),
            "2024-02-29T23:59:58.001042Z 4711 InternalMethodEnd -1 0x7ffe00001000 "
            "iphone-IOPort/Session.cpp:1234567890123 -[ExternalAccessoryPort write:] "
            "\"BT:Shop\"\\n\xEF\xBF\xBD, -> 1\n");
}

TEST(RecordText, EscapesControlCharactersOfEveryText) {
  LogRecord record = recordOf("a\nb");
  record.object = "c\nd";
  record.file = "e\nf";
  record.method = "g\nh";
  for (const std::string& line : {jsonOf(record), readableOf(record)}) {
    for (const char* text : {"a\\nb", "c\\nd", "e\\nf", "g\\nh"}) {
      EXPECT_NE(line.find(text), std::string::npos) << line;
    }
    EXPECT_EQ(line.find('\n'), line.size() - 1) << line;
  }
}

TEST(RecordText, WritesTheNumberAndTheNameOfEachRecordType) {
  const std::vector<std::pair<ZKLogType, std::string>> types{
      {ZKLogTypeQuorIOAPIStart, R"("type":0,"typeName":"QuorIOAPIStart",)"},
      {ZKLogTypeQuorIOAPIEnd, R"("type":1,"typeName":"QuorIOAPIEnd",)"},
      {ZKLogTypeInternalMethodStart, R"("type":2,"typeName":"InternalMethodStart",)"},
      {ZKLogTypeInternalMethodEnd, R"("type":3,"typeName":"InternalMethodEnd",)"},
      {ZKLogTypeWrite, R"("type":4,"typeName":"Write",)"},
      {ZKLogTypeRead, R"("type":5,"typeName":"Read",)"},
      {ZKLogTypeProcess, R"("type":6,"typeName":"Process",)"},
      {ZKLogTypeError, R"("type":7,"typeName":"Error",)"},
      {static_cast<ZKLogType>(8), R"("type":8,"typeName":"Unknown",)"},
      {static_cast<ZKLogType>(-1), R"("type":-1,"typeName":"Unknown",)"}};
  for (const auto& [type, text] : types) {
    LogRecord record = recordOf("");
    record.type = type;
    EXPECT_NE(jsonOf(record).find(text), std::string::npos) << text;
  }
}

TEST(RecordText, WritesTimesBefore1970) {
  LogRecord record = recordOf("");
  record.time = system_clock::time_point{} - 1ns;
  EXPECT_NE(jsonOf(record).find("1969-12-31T23:59:59.999999Z"), std::string::npos);
}

}  // namespace
}  // namespace quordalvane
