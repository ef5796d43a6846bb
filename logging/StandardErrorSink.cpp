#include "logging/StandardErrorSink.h"

#include <unistd.h>

#include "logging/DescriptorOutput.h"
#include "logging/RecordText.h"

namespace quordalvane {
namespace {

constexpr std::size_t writeSize = std::size_t{64} << 10U;

}  // namespace

void StandardErrorSink::write(std::span<const LogRecord> records) {
  for (const LogRecord& record : records) {
    appendReadableLine(lines_, record);
    if (lines_.size() >= writeSize) {
      writeOut();
    }
  }
  writeOut();
}

void StandardErrorSink::writeOut() {
  const WriteOutcome outcome = writeAll(STDERR_FILENO, lines_);
  lines_.clear();
  if (outcome.error) {
    throw std::system_error(outcome.error, "cannot write to standard error");
  }
}

}  // namespace quordalvane
