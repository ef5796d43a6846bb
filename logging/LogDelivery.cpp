#include "logging/LogDelivery.h"

#include <signal.h>  // NOLINT(modernize-deprecated-headers): pthread_sigmask is POSIX, not C++
#include <unistd.h>

#include <exception>
#include <new>
#include <optional>
#include <string>
#include <string_view>

#include "logging/DescriptorOutput.h"
#include "text/PrintableText.h"

namespace quordalvane {
namespace {

constexpr const char* queueWasFull = "log records dropped here, the queue was full: ";
constexpr const char* memoryWasShort = "log records dropped here, memory was short: ";

constexpr std::string_view sinkFailed =
    "logging: a sink failed; records are missing from its output: ";

void reportToStandardError(std::string_view reason) noexcept {
  // A failure here is ignored, because nothing is left to which it could be reported.
  try {
    std::string line(sinkFailed);
    appendPrintable(line, reason);
    line += '\n';
    writeAll(STDERR_FILENO, line);
  } catch (const std::bad_alloc&) {
    writeAll(STDERR_FILENO, sinkFailed);
    writeAll(STDERR_FILENO, "memory is short\n");
  }
}

/// Blocks all signals on the writer thread. So this thread never handles a signal of the
/// application. If a sink writes to a pipe without a reader, only this write fails, and SIGPIPE
/// does not end the process.
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
  AttachedSinks grown = sinks_;
  grown.push_back(std::make_shared<AttachedSink>(AttachedSink{.sink = std::move(sink)}));
  if (!writer_.joinable()) {
    startWriter();
  }
  sinks_.swap(grown);
}

void LogDelivery::startWriter() {
  queue_.open();
  try {
    LogQueue::Batch batch;
    batch.records.reserve(1);  // even if memory is short later, the queue can take one record
    writer_ = std::thread([this, batch = std::move(batch)]() mutable { runWriter(batch); });
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

void LogDelivery::runWriter(LogQueue::Batch& batch) {
  writerId_.store(std::this_thread::get_id(), std::memory_order_relaxed);
  blockSignals();
  while (queue_.take(batch)) {
    const std::size_t taken = batch.records.size();
    const bool delivered = deliver(batch);
    if (!delivered) {
      noteUndelivered(batch);
    }
    batch.records.clear();
    if (delivered) {
      queue_.finish(taken);
    } else {
      queue_.lose(taken);
    }
  }
}

/// Passes the batch to every sink. If records are missing immediately before or after the batch, a
/// record in their place reports how many are missing. Returns false if memory is short; then no
/// sink has received a record.
bool LogDelivery::deliver(LogQueue::Batch& batch) {
  try {
    const AttachedSinks sinks = attachedSinks();
    std::optional<LogRecord> before;
    if (undelivered_.records > 0) {
      before = recordOf(undelivered_, memoryWasShort);
    }
    if (batch.dropped > 0) {
      LogRecord behind = recordOf({batch.dropped, batch.firstDropTime}, queueWasFull);
      batch.records.add(behind);
    }
    for (const auto& attached : sinks) {
      if (before) {
        give(*attached, {&*before, 1});
      }
      give(*attached, batch.records.records());
    }
    undelivered_ = {};
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

void LogDelivery::noteUndelivered(const LogQueue::Batch& batch) noexcept {
  if (undelivered_.records == 0) {
    undelivered_.since = batch.records.records().front().time;
  }
  undelivered_.records += batch.records.size() + batch.dropped;
}

/// Returns a record that reports how many records are missing. In the log, this record replaces the
/// missing records.
LogRecord LogDelivery::recordOf(const Missing& missing, const char* why) {
  return {.time = missing.since,
          .thread = currentThreadId(),
          .type = ZKLogTypeError,
          .level = 0,
          .line = __LINE__,
          .file = __FILE__,
          .method = "LogDelivery",
          .object = "0x0",
          .message = why + std::to_string(missing.records)};
}

LogDelivery::AttachedSinks LogDelivery::attachedSinks() const {
  const std::lock_guard lock(sinksMutex_);
  return sinks_;
}

void LogDelivery::give(AttachedSink& attached, std::span<const LogRecord> records) noexcept {
  const auto reportOnce = [&attached](std::string_view reason) {
    if (!std::exchange(attached.failureReported, true)) {
      reportToStandardError(reason);
    }
  };
  try {
    attached.sink->write(records);
  } catch (const std::exception& failure) {
    reportOnce(failure.what());
  } catch (...) {
    reportOnce("an exception without a text");
  }
}

}  // namespace quordalvane
