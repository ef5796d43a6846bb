#include "tools/quorport/LogOutput.h"

#include <string>
#include <system_error>

#include "iphone-IOPort/LogWriter.h"
#include "logging/DescriptorOutput.h"
#include "logging/JsonFileSink.h"
#include "logging/RecordText.h"
#include "tools/quorport/Report.h"

namespace quordalvane::tool {
namespace {

// Writes to a descriptor that is open already and not ours, a terminal as well as a pipe.
class JsonDescriptorSink : public LogSink {
 public:
  explicit JsonDescriptorSink(int descriptor) : descriptor_(descriptor) {}

  void write(std::span<const LogRecord> records) override {
    std::string lines;
    for (const LogRecord& record : records) {
      appendJsonLine(lines, record);
    }
    if (const WriteOutcome outcome = writeAll(descriptor_, lines); outcome.error) {
      throw std::system_error(outcome.error, "cannot write the log");
    }
  }

 private:
  const int descriptor_;
};

std::shared_ptr<LogSink> makeSink(const std::string& name, const Streams& streams) {
  if (name == "-") {
    return std::make_shared<JsonDescriptorSink>(streams.err);
  }
  try {
    return std::make_shared<JsonFileSink>(name);
  } catch (const std::system_error& error) {
    throw Failure(ExitCode::Usage, "--log: the file " + inQuotes(name) +
                                       " cannot be opened: " + error.code().message());
  }
}

}  // namespace

LogOutput::LogOutput(const Options& options, const Streams& streams) {
  if (!options.log) {
    return;
  }
  sink_ = makeSink(*options.log, streams);
  LogWriter::sharedInstance().addSink(sink_);
  LogWriter::setTargetLogLevels(options.logLevels.empty() ? std::set<std::int32_t>{0}
                                                          : options.logLevels);
  LogWriter::setLogging(true);
}

LogOutput::~LogOutput() {
  if (sink_ != nullptr) {
    LogWriter::setLogging(false);
    LogWriter::sharedInstance().flush();
    LogWriter::sharedInstance().removeSink(sink_);
  }
}

}  // namespace quordalvane::tool
