#include "logging/JsonFileSink.h"

#include "logging/RecordText.h"

namespace quordalvane {

void JsonFileSink::write(std::span<const LogRecord> records) {
  for (const LogRecord& record : records) {
    line_.clear();
    appendJsonLine(line_, record);
    file_.append(line_);
  }
  file_.flush();
}

}  // namespace quordalvane
