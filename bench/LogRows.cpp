// Measures how long a log statement delays its caller.

#include <benchmark/benchmark.h>
#include <spdlog/async.h>
#include <spdlog/sinks/base_sink.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include "bench/Cores.h"
#include "bench/Groups.h"
#include "iphone-IOPort/LogStatement.h"
#include "logging/LogQueue.h"
#include "tests/counts/Allocations.h"

namespace quordalvane::bench {
namespace {

using std::chrono::nanoseconds;
using SteadyClock = std::chrono::steady_clock;
using namespace std::chrono_literals;

constexpr double nanosecond = 1e9;
constexpr double millisecond = 1e3;
constexpr std::size_t queueSize = LogQueue::defaultCapacity;

/// Counts the records that arrive. It can be set to handle the first records slowly.
class Destination {
 public:
  void take(std::size_t records) {
    count_ += records;
    std::this_thread::sleep_for(std::exchange(stall_, {}));
  }

  void stallOnce(nanoseconds stall) { stall_ = stall; }
  std::uint64_t count() const { return count_; }

 private:
  std::atomic<std::uint64_t> count_ = 0;
  nanoseconds stall_{};  // must be set before the first record arrives
};

class OurSink final : public LogSink, public Destination {
 public:
  /// Does not count the records by which the logger reports that it has dropped records.
  void write(std::span<const LogRecord> records) override {
    const auto logged = std::count_if(records.begin(), records.end(), [](const LogRecord& record) {
      return record.type != ZKLogTypeError;
    });
    take(static_cast<std::size_t>(logged));
  }
};

class TheirSink final : public spdlog::sinks::base_sink<spdlog::details::null_mutex>,
                        public Destination {
 protected:
  void sink_it_(const spdlog::details::log_msg& /*message*/) override { take(1); }
  void flush_() override {}
};

/// Our logger, turned on, with its writer on the second core.
class OurLogger {
 public:
  explicit OurLogger(std::size_t capacity = queueSize) {
    auto& writer = LogWriter::sharedInstance();
    writer.setQueueCapacity(capacity);
    const Bound bound(Core::Second);
    writer.addSink(sink_);
    before_ = writer.statistics();
    LogWriter::setLogging(true);
  }
  ~OurLogger() {
    LogWriter::setLogging(false);
    LogWriter::sharedInstance().removeSink(sink_);
    finish();
  }
  OurLogger(const OurLogger&) = delete;
  OurLogger& operator=(const OurLogger&) = delete;

  void log(std::int64_t number) const {
    constexpr auto selector = "-[ExternalAccessoryPort writeWithRetry:]";
    QUOR_LOG(ZKLogTypeProcess, 0, "end.tv_sec - start.tv_sec > timeoutSec, %ld, %ld, %d", number,
             number, 10);
  }

  void finish() { LogWriter::sharedInstance().flush(10s); }
  Destination& destination() { return *sink_; }
  std::uint64_t dropped() const {
    return LogWriter::sharedInstance().statistics().dropped - before_.dropped;
  }

 private:
  const std::shared_ptr<OurSink> sink_ = std::make_shared<OurSink>();
  LogStatistics before_{};
};

/// Logs the same text and fields by a well-known asynchronous logger, which keeps the newest
/// records if there are too many. Like our logger, it has its writer on the second core.
class TheirLogger {
 public:
  explicit TheirLogger(std::size_t capacity = queueSize) {
    const Bound bound(Core::Second);
    pool_ = std::make_shared<spdlog::details::thread_pool>(capacity, 1U);
    logger_ = std::make_shared<spdlog::async_logger>("bench", sink_, pool_,
                                                     spdlog::async_overflow_policy::overrun_oldest);
  }

  void log(std::int64_t number) const {
    logger_->log(spdlog::source_loc{__FILE__, __LINE__, "writeWithRetry"}, spdlog::level::info,
                 "{} end.tv_sec - start.tv_sec > timeoutSec, {}, {}, {}", fmt::ptr(this), number,
                 number, 10);
  }

  /// Logs in the cheapest form, which checks the level before any argument is evaluated.
  void logIfWanted(std::int64_t number) const {
    if (logger_->should_log(spdlog::level::info)) {
      log(number);
    }
  }

  void switchOff() { logger_->set_level(spdlog::level::off); }

  void finish() {
    while (pool_->queue_size() > 0) {
      std::this_thread::sleep_for(1ms);
    }
    std::this_thread::sleep_for(1ms);  // the last record leaves the queue before it is written
  }
  Destination& destination() { return *sink_; }
  std::uint64_t dropped() const { return pool_->overrun_counter(); }

 private:
  const std::shared_ptr<TheirSink> sink_ = std::make_shared<TheirSink>();
  std::shared_ptr<spdlog::details::thread_pool> pool_;
  std::shared_ptr<spdlog::async_logger> logger_;
};

/// A load of `bursts` bursts. A burst is `size` records without a pause. A burst begins when
/// `every` has passed since the previous burst began.
struct Load {
  const char* name;
  int bursts;
  int size;
  nanoseconds every;
};

constexpr Load loads[] = {
    {"bursts of 10 every 2 ms", 300, 10, 2ms},
    {"bursts of 4,000", 10, 4000, 20ms},
    {"1,000,000 a second for 0.5 s", 500'000, 1, 1us},
};

void awaitInstant(SteadyClock::time_point instant) {
  std::this_thread::sleep_until(instant - 200us);
  while (SteadyClock::now() < instant) {
  }
}

/// Returns the cost of reading the clock before and after a call, in seconds.
double secondsOfMeasuring() {
  constexpr int looks = 10'000;
  return median(secondsOfEach(looks, [] {}));
}

/// Returns the duration of each call of the load, in seconds.
template <typename Logger>
Figures secondsOfCalls(const Load& load, const Logger& logger) {
  Figures seconds;
  const double measuring = secondsOfMeasuring();
  seconds.reserve(static_cast<std::size_t>(load.bursts) * static_cast<std::size_t>(load.size));
  auto begin = SteadyClock::now() + 1ms;
  for (int burst = 0; burst < load.bursts; ++burst, begin += load.every) {
    awaitInstant(begin);
    for (int i = 0; i < load.size; ++i) {
      seconds.push_back(secondsOf([&] { logger.log(i); }) - measuring);
    }
  }
  return seconds;
}

struct CallerView {
  double middle;
  double slow;  // 99 of 100 calls take at most this time
  double dropped;
};

template <typename Logger>
CallerView viewOf(const Figures& seconds, Logger& logger) {
  logger.finish();
  return {.middle = median(seconds),
          .slow = quantile(seconds, 0.99),
          .dropped = static_cast<double>(logger.dropped())};
}

template <typename Logger>
CallerView viewOf(const Load& load) {
  Logger logger;
  const Figures seconds = secondsOfCalls(load, logger);
  return viewOf(seconds, logger);
}

void addRowsOf(const Load& load, Rows& rows) {
  const std::string name = std::string("a log statement, ") + load.name;
  const auto pairs =
      alternate([&] { return viewOf<OurLogger>(load); }, [&] { return viewOf<TheirLogger>(load); });
  rows.push_back(comparedRow({"B7", name + ": p50", "<= 300 ns and <= 0.6 x", "ns"},
                             figuresOf(pairs, &CallerView::middle), Best::Lowest, nanosecond));
  rows.push_back(comparedRow({"B7", name + ": p99", "<= 1 x", "ns"},
                             figuresOf(pairs, &CallerView::slow), Best::Lowest, nanosecond));
  const auto drops = figuresOf(pairs, &CallerView::dropped);
  rows.push_back({.heading = {"B7", name + ": drops, all runs", "0", "records"},
                  .ours = sum(drops.ours),
                  .limit = sum(drops.limit)});
}

/// Measures the log calls of `count` threads that log at the same time. Each thread makes all calls
/// of `load`.
template <typename Logger>
CallerView viewOfMany(const Load& load, int count) {
  Logger logger;
  Figures seconds;
  std::mutex mutex;
  std::vector<std::thread> threads;
  for (int i = 0; i < count; ++i) {
    threads.emplace_back([&] {
      const Figures own = secondsOfCalls(load, logger);
      const std::lock_guard lock(mutex);
      seconds.insert(seconds.end(), own.begin(), own.end());
    });
  }
  for (auto& thread : threads) {
    thread.join();
  }
  return viewOf(seconds, logger);
}

struct StallView {
  double longest;
  double unaccounted;  // records that were neither delivered nor counted as dropped
};

template <typename Logger>
StallView viewOfStall() {
  // The load is 20,000 records a second for 0.4 s. For half of this time the destination stalls.
  constexpr Load load{"", 8000, 1, 50us};
  // This queue is too small for the records that arrive during the stall.
  constexpr std::size_t smallQueue = 1024;
  Logger logger(smallQueue);
  logger.destination().stallOnce(200ms);
  const double longest = highest(secondsOfCalls(load, logger));
  logger.finish();
  return {.longest = longest,
          .unaccounted = static_cast<double>(load.bursts) -
                         static_cast<double>(logger.destination().count()) -
                         static_cast<double>(logger.dropped())};
}

/// Runs the registered benchmarks one after another and keeps the last result.
class LastFigure final : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context& /*context*/) override { return true; }
  void ReportRuns(const std::vector<Run>& runs) override {
    seconds_ = runs.front().real_accumulated_time / static_cast<double>(runs.front().iterations);
  }

  double secondsOf(const std::string& name) {
    benchmark::RunSpecifiedBenchmarks(this, name);
    return seconds_;
  }

 private:
  double seconds_ = 0;
};

template <typename Statement>
void run(benchmark::State& state, Statement statement) {
  for (auto _ : state) {
    statement();
    benchmark::ClobberMemory();
  }
}

}  // namespace

Rows logStatementOff() {
  const Bound bound(Core::First);
  const OurLogger ours;
  LogWriter::setLogging(false);
  TheirLogger theirs;
  theirs.switchOff();
  constexpr double seconds = 0.1;
  benchmark::RegisterBenchmark("ours", [&](auto& state) {
    run(state, [&] { ours.log(1); });
  })->MinTime(seconds);
  benchmark::RegisterBenchmark("theirs", [&](auto& state) {
    run(state, [&] { theirs.logIfWanted(1); });
  })->MinTime(seconds);
  LastFigure figure;
  const auto pairs = alternate([&] { return figure.secondsOf("ours"); },
                               [&] { return figure.secondsOf("theirs"); });
  const auto taken = allocationsOf([&] { ours.log(1); });
  return {comparedRow({"B6", "a log statement, logging off", "<= 3 ns and <= 4 x", "ns"}, pairs,
                      Best::Lowest, nanosecond),
          {.heading = {"B6", "allocations by a log statement, logging off", "0", "count"},
           .ours = static_cast<double>(taken.count)}};
}

Rows logStatementOn() {
  const Bound bound(Core::First);
  Rows rows;
  for (const Load& load : loads) {
    addRowsOf(load, rows);
  }
  return rows;
}

Rows stalledSink() {
  const Bound bound(Core::First);
  const auto pairs = alternate(viewOfStall<OurLogger>, viewOfStall<TheirLogger>);
  const auto unaccounted = figuresOf(pairs, &StallView::unaccounted);
  return {comparedRow({"B8", "longest call while the sink stalls for 0.2 s", "<= 1 ms", "ms"},
                      figuresOf(pairs, &StallView::longest), Best::Lowest, millisecond),
          {.heading = {"B8", "records neither delivered nor counted as dropped", "0", "records"},
           .ours = sum(unaccounted.ours),
           .limit = sum(unaccounted.limit)}};
}

GrowthTable growingLoggers() {
  constexpr Load load{"", 20'000, 1, 20us};
  GrowthTable table{
      .title = "More and more logging threads; each logs 50,000 records a second for 0.4 s",
      .columns = {"threads", "ours p50, ns", "ours p99, ns", "dropped", "spdlog p50, ns",
                  "spdlog p99, ns", "dropped"},
      .lines = {}};
  for (const int threads : {1, 2, 4, 8}) {
    const CallerView ours = viewOfMany<OurLogger>(load, threads);
    const CallerView theirs = viewOfMany<TheirLogger>(load, threads);
    table.lines.push_back({std::to_string(threads), figure(ours.middle * nanosecond),
                           figure(ours.slow * nanosecond), figure(ours.dropped),
                           figure(theirs.middle * nanosecond), figure(theirs.slow * nanosecond),
                           figure(theirs.dropped)});
  }
  return table;
}

}  // namespace quordalvane::bench
