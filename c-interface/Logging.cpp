#include <chrono>
#include <set>
#include <utility>

#include "c-interface/Failures.h"
#include "iphone-IOPort/LogWriter.h"
#include "logging/CallbackSink.h"
#include "logging/JsonFileSink.h"
#include "logging/StandardErrorSink.h"

using namespace quordalvane;
using namespace quordalvane::c;

struct QuorLogSink {
  explicit QuorLogSink(std::shared_ptr<LogSink> added) : sink(std::move(added)) {}
  const std::shared_ptr<LogSink> sink;
};

namespace {

QuorLogRecord recordOf(const LogRecord& record) {
  const auto sinceEpoch = record.time.time_since_epoch();
  return {.time = std::chrono::nanoseconds(sinceEpoch).count(),
          .thread = record.thread,
          .type = record.type,
          .level = record.level,
          .line = record.line,
          .file = record.file,
          .method = record.method,
          .object = record.object.c_str(),
          .message = record.message.c_str()};
}

template <typename Make>
QuorCode add(QuorLogSink** sink, Make make) {
  return guarded([&] {
    given(sink, "the pointer that receives the sink") = nullptr;
    auto handle = std::make_unique<QuorLogSink>(make());
    LogWriter::sharedInstance().addSink(handle->sink);
    *sink = handle.release();
  });
}

}  // namespace

int32_t quor_log_is_logging(void) {
  return LogWriter::isLogging();
}

void quor_log_set_logging(int32_t on) {
  LogWriter::setLogging(on != 0);
}

int32_t quor_log_is_target_level(int32_t level) {
  return LogWriter::isTargetLogLevel(level);
}

QuorCode quor_log_set_target_levels(const int32_t* levels, size_t count) {
  return guarded([&] {
    std::set<std::int32_t> wanted;
    for (size_t i = 0; i < count; ++i) {
      given(levels, "the levels");
      wanted.insert(levels[i]);
    }
    try {
      LogWriter::setTargetLogLevels(wanted);
    } catch (const std::out_of_range& unknown) {
      throw CallFailure(QUOR_USAGE, unknown.what());
    }
  });
}

QuorCode quor_log_add_function(QuorLogFunction function, void* context, QuorLogSink** sink) {
  return add(sink, [&] {
    given(function, "the function");
    return std::make_shared<CallbackSink>([function, context](const LogRecord& record) {
      const QuorLogRecord shown = recordOf(record);
      function(context, &shown);
    });
  });
}

QuorCode quor_log_add_file(const char* path, uint64_t maximum_bytes, uint32_t kept_files,
                           QuorLogSink** sink) {
  return add(sink, [&] {
    return std::make_shared<JsonFileSink>(
        &given(path, "the path"),
        LogRotation{.maximumBytes = maximum_bytes, .keptFiles = kept_files});
  });
}

QuorCode quor_log_add_standard_error(QuorLogSink** sink) {
  return add(sink, [] { return std::make_shared<StandardErrorSink>(); });
}

QuorCode quor_log_remove_sink(QuorLogSink* sink) {
  return guarded([&] {
    if (sink != nullptr) {
      const std::unique_ptr<QuorLogSink> handle(sink);
      LogWriter& writer = LogWriter::sharedInstance();
      const bool idle = writer.flush();
      writer.removeSink(handle->sink);
      succeed(idle && writer.flush(), "the sink is still at work");
    }
  });
}

QuorCode quor_log_flush(uint32_t timeout) {
  return guarded([&] {
    succeed(LogWriter::sharedInstance().flush(std::chrono::milliseconds(timeout)),
            "a sink is still at work");
  });
}

QuorCode quor_log_set_queue_capacity(size_t records) {
  return guarded([&] { LogWriter::sharedInstance().setQueueCapacity(records); });
}

QuorCode quor_log_statistics(QuorLogStatistics* statistics) {
  return guarded([&] {
    const LogStatistics now = LogWriter::sharedInstance().statistics();
    given(statistics, "the statistics") = {.handed_over = now.handedOver, .dropped = now.dropped};
  });
}
