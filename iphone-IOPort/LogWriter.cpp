#include "iphone-IOPort/LogWriter.h"

#include <cstddef>
#include <cstdlib>
#include <stdexcept>
#include <utility>

#include "logging/LogDelivery.h"
#include "text/Hex.h"

namespace quordalvane {

LogWriter::LogWriter() : delivery_(*new LogDelivery) {}

void LogWriter::setLogging(bool on) noexcept {
  logging_.store(on, std::memory_order_relaxed);
}

void LogWriter::setTargetLogLevels(const std::set<std::int32_t>& levels) {
  std::uint64_t targets = 0;
  for (const std::int32_t level : levels) {
    if (!isKnownLevel(level)) {
      throw std::out_of_range("a log level is 0 to 63, not " + std::to_string(level));
    }
    targets |= std::uint64_t{1} << level;
  }
  targetLevels_.store(targets, std::memory_order_relaxed);
}

LogWriter& LogWriter::sharedInstance() {
  static LogWriter* const instance = [] {
    std::atexit([] { sharedInstance().flush(); });
    return new LogWriter;
  }();
  return *instance;
}

std::string LogWriter::createByteArrayDescription(const std::vector<std::uint8_t>& data) {
  return createByteArrayDescription(data.data(), data.size());
}

std::string LogWriter::createByteArrayDescription(const std::uint8_t* bytes, std::uint64_t size) {
  if (size == 0) {
    return "<>";
  }
  std::string description(size * 3 + 1, ' ');
  char* end = description.data();
  *end++ = '<';
  for (std::uint64_t index = 0; index < size; ++index, end += 3) {
    end[0] = hexDigits[bytes[index] >> 4U];
    end[1] = hexDigits[bytes[index] & 0xFU];
  }
  description.back() = '>';
  return description;
}

void LogWriter::outputLogAsyncWithLogType(ZKLogType logType, std::int32_t logLevel,
                                          std::string objectAddress, const char* fileName,
                                          std::int64_t lineNumber, const char* methodName,
                                          std::string anyString) noexcept {
  delivery_.handOver({.time = currentTime(),
                      .thread = currentThreadId(),
                      .type = logType,
                      .level = logLevel,
                      .line = lineNumber,
                      .file = fileName,
                      .method = methodName,
                      .object = std::move(objectAddress),
                      .message = std::move(anyString)});
}

void LogWriter::addSink(std::shared_ptr<LogSink> sink) {
  delivery_.addSink(std::move(sink));
}

void LogWriter::removeSink(const std::shared_ptr<LogSink>& sink) {
  delivery_.removeSink(sink);
}

void LogWriter::setQueueCapacity(std::size_t records) {
  delivery_.setQueueCapacity(records);
}

bool LogWriter::flush(std::chrono::milliseconds timeout) {
  return delivery_.flush(timeout);
}

LogStatistics LogWriter::statistics() const {
  const LogQueue::Counts counts = delivery_.counts();
  return {.handedOver = counts.handedOver, .dropped = counts.dropped};
}

}  // namespace quordalvane
