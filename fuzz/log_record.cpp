#include <nlohmann/json.hpp>

#include "fuzz/Input.h"
#include "fuzz/Text.h"
#include "logging/RecordText.h"

using namespace quordalvane;
using fuzz::require;

/// The input is the method and the object of a log record, each ended by a zero byte, and then the
/// message. The text form and the JSON form must each be one line without control characters. A
/// valid message must be unchanged after the JSON is parsed.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const std::string method = input.text();
  const std::string object = input.text();
  const fuzz::Bytes rest = input.rest();
  const LogRecord record{.time = {},
                         .thread = 1,
                         .type = ZKLogTypeRead,
                         .level = 0,
                         .line = 1,
                         .file = "file",
                         .method = method.c_str(),
                         .object = object,
                         .message = {rest.begin(), rest.end()}};
  for (const auto append : {appendJsonLine, appendReadableLine}) {
    std::string line;
    append(line, record);
    require(!line.empty() && line.back() == '\n');
    line.pop_back();
    require(fuzz::isHarmless(line));
  }
  std::string line;
  appendJsonLine(line, record);
  const auto json = nlohmann::json::parse(line);
  std::string shown;
  appendPrintable(shown, record.message);
  if (isPrintable(record.message)) {
    require(json.at("message") == record.message && shown == record.message);
  }
  return 0;
}
