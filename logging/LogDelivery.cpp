#include "logging/LogDelivery.h"

#include <signal.h>  // NOLINT(modernize-deprecated-headers): pthread_sigmask is POSIX, not C++
#include <unistd.h>

#include <exception>
#include <string>

#include "logging/DescriptorOutput.h"
#include "logging/PrintableText.h"

namespace quordalvane {
namespace {

/// Stands in the stream where records are missing.
LogRecord dropRecord(const LogQueue::Batch& batch) {
  return {
      .time = batch.firstDropTime,
      .thread = currentThreadId(),
      .type = ZKLogTypeError,
      .level = 0,
      .line = __LINE__,
      .file = __FILE__,
      .method = "LogDelivery",
      .object = "0x0",
      .message = "log records dropped here, the queue was full: " + std::to_string(batch.dropped)};
}

void reportToStandardError(std::string_view reason) noexcept {
  std::string line = "logging: a sink failed, records are missing from it: ";
  appendPrintable(line, reason);
  line += '\n';
  writeAll(STDERR_FILENO, line);  // there is no one left to tell when this fails
}

/// The writer thread handles no signal of the application's, and a pipe without a reader is an
/// error of one sink, not the end of the process.
void blockSignals() noexcept {
  sigset_t all;
  sigfillset(&all);
  pthread_sigmask(SIG_BLOCK, &all, nullptr);
}

}  // namespace

LogDelivery::~LogDelivery() {
  queue_.close();
  if (writer_.joinable()) {
    writer_.join();
  }
}

void LogDelivery::addSink(std::shared_ptr<LogSink> sink) {
  const std::lock_guard lock(sinksMutex_);
  auto attached = std::make_shared<AttachedSink>(AttachedSink{.sink = std::move(sink)});
  sinks_.reserve(sinks_.size() + 1);
  if (!writer_.joinable()) {
    startWriter();
  }
  sinks_.push_back(std::move(attached));
}

void LogDelivery::startWriter() {
  queue_.open();
  try {
    writer_ = std::thread([this] { runWriter(); });
  } catch (...) {
    queue_.close();
    throw;
  }
}

void LogDelivery::removeSink(const std::shared_ptr<LogSink>& sink) {
  const std::lock_guard lock(sinksMutex_);
  std::erase_if(sinks_, [&](const auto& attached) { return attached->sink == sink; });
}

void LogDelivery::setQueueCapacity(std::size_t records) {
  queue_.setCapacity(records);
}

bool LogDelivery::flush(std::chrono::milliseconds timeout) {
  const bool isWriter = writerId_.load(std::memory_order_relaxed) == std::this_thread::get_id();
  return queue_.waitUntilFinished(isWriter ? std::chrono::milliseconds::zero() : timeout);
}

void LogDelivery::runWriter() {
  writerId_.store(std::this_thread::get_id(), std::memory_order_relaxed);
  blockSignals();
  LogQueue::Batch batch;
  while (queue_.take(batch)) {
    const std::size_t taken = batch.records.size();
    if (batch.dropped > 0) {
      LogRecord drop = dropRecord(batch);
      batch.records.add(drop);
    }
    for (const auto& attached : attachedSinks()) {
      give(*attached, batch.records.records());
    }
    batch.records.clear();
    queue_.finish(taken);
  }
}

LogDelivery::AttachedSinks LogDelivery::attachedSinks() const {
  const std::lock_guard lock(sinksMutex_);
  return sinks_;
}

void LogDelivery::give(AttachedSink& attached, std::span<const LogRecord> records) {
  std::string reason;
  try {
    attached.sink->write(records);
    return;
  } catch (const std::exception& failure) {
    reason = failure.what();
  } catch (...) {
    reason = "an exception that tells nothing of itself";
  }
  if (!std::exchange(attached.failureReported, true)) {
    reportToStandardError(reason);
  }
}

}  // namespace quordalvane
