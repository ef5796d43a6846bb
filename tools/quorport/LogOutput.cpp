#include "tools/quorport/LogOutput.h"

#include <string>
#include <system_error>
#include <utility>

#include "iphone-IOPort/LogWriter.h"
#include "logging/DescriptorOutput.h"
#include "logging/JsonFileSink.h"
#include "logging/RecordText.h"
#include "text/Quoted.h"
#include "tools/quorport/CommandFailure.h"

namespace quordalvane::tool {
namespace {

// Writes to an open descriptor that belongs to the caller; it may be a terminal or a pipe.
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
    throw CommandFailure(ExitCode::Usage, "--log: the file " + inQuotes(name) +
                                              " cannot be opened: " + error.code().message());
  }
}

}  // namespace

Recording::Recording(std::shared_ptr<LogSink> sink, const std::set<std::int32_t>& levels)
    : sink_(std::move(sink)), wasLogging_(LogWriter::isLogging()) {
  LogWriter::sharedInstance().addSink(sink_);
  LogWriter::setTargetLogLevels(levels);
  LogWriter::setLogging(true);
}

Recording::~Recording() {
  LogWriter::setLogging(wasLogging_);
  LogWriter::sharedInstance().flush();
  LogWriter::sharedInstance().removeSink(sink_);
}

Unrecorded::Unrecorded() : wasLogging_(LogWriter::isLogging()) {
  LogWriter::setLogging(false);
}

Unrecorded::~Unrecorded() {
  LogWriter::setLogging(wasLogging_);
}

LogOutput::LogOutput(const Options& options, const Streams& streams) {
  if (options.log) {
    recording_.emplace(makeSink(*options.log, streams), options.logLevels);
  }
}

}  // namespace quordalvane::tool
