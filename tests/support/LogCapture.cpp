#include "tests/support/LogCapture.h"

#include <iterator>
#include <stdexcept>
#include <utility>

namespace quordalvane::test {

class LogCapture::Sink : public LogSink {
 public:
  void write(std::span<const LogRecord> records) override {
    const std::lock_guard lock(mutex_);
    records_.insert(records_.end(), records.begin(), records.end());
  }

  std::vector<LogRecord> take() {
    const std::lock_guard lock(mutex_);
    return std::exchange(records_, {});
  }

 private:
  std::mutex mutex_;
  std::vector<LogRecord> records_;
};

namespace {

// No test checks this limit. It is below the five minutes after which ctest ends a test, so that a
// test whose records never arrive still reports the error.
constexpr auto patience = std::chrono::minutes(4);

}  // namespace

LogCapture::LogCapture() : sink_(std::make_shared<Sink>()) {
  LogWriter::sharedInstance().setQueueCapacity(1U << 20U);
  LogWriter::sharedInstance().addSink(sink_);
}

LogCapture& LogCapture::instance() {
  static auto& capture = *new LogCapture;  // never destroyed: a port thread may log at exit
  return capture;
}

void LogCapture::clear() {
  const LogStatistics now = LogWriter::sharedInstance().statistics();
  if (now.handedOver != seen_.handedOver) {
    LogWriter::sharedInstance().flush(patience);
    sink_->take();
    seen_ = now;
  }
}

std::vector<LogRecord> LogCapture::take() {
  const LogStatistics now = LogWriter::sharedInstance().statistics();
  if (now.handedOver == seen_.handedOver) {
    return {};  // there is no new record; a flush would only wait for the log's thread
  }
  const bool isDelivered = LogWriter::sharedInstance().flush(patience);
  const bool isComplete = now.dropped == seen_.dropped;
  seen_ = now;
  if (!isDelivered || !isComplete) {
    throw std::runtime_error(isComplete ? "log records were not delivered within four minutes"
                                        : "log records were dropped");
  }
  return sink_->take();
}

Logging::Logging(bool on, const std::set<std::int32_t>& levels) {
  LogCapture::instance();
  LogWriter::setTargetLogLevels(levels);
  LogWriter::setLogging(on);
}

Logging::~Logging() {
  LogWriter::setLogging(false);
  LogWriter::setTargetLogLevels({0});
}

}  // namespace quordalvane::test
