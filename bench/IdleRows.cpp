// The cost of many open ports while nothing happens, and of a status query on one of them.

#include <malloc.h>
#include <sys/resource.h>

#include <condition_variable>
#include <fstream>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "bench/Crowd.h"
#include "bench/Groups.h"

namespace quordalvane::bench {
namespace {

using namespace std::chrono_literals;

constexpr int portCount = 1000;

/// Threads that do only what every port thread must do: they wait in slices of 0.1 s.
class BareThreads {
 public:
  explicit BareThreads(int count) {
    for (int i = 0; i < count; ++i) {
      threads_.emplace_back([this] {
        std::mutex mutex;
        std::condition_variable never;
        std::unique_lock lock(mutex);
        while (!stop_) {
          never.wait_until(lock, std::chrono::steady_clock::now() + 100ms);
        }
      });
    }
  }
  ~BareThreads() {
    stop_ = true;
    for (auto& thread : threads_) {
      thread.join();
    }
  }
  BareThreads(const BareThreads&) = delete;
  BareThreads& operator=(const BareThreads&) = delete;

 private:
  std::atomic<bool> stop_ = false;
  std::vector<std::thread> threads_;
};

struct Usage {
  double seconds;
  double wakeUps;
};

Usage usageOfThisProcess() {
  rusage usage{};
  ::getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
  };
  return {.seconds = seconds(usage.ru_utime) + seconds(usage.ru_stime),
          .wakeUps = static_cast<double>(usage.ru_nvcsw)};
}

/// Returns the resident memory of this process, in KiB.
double residentKibibytes() {
  std::ifstream file("/proc/self/smaps_rollup");
  for (std::string word; file >> word;) {
    if (word == "Rss:") {
      double size = 0;
      file >> size;
      return size;
    }
  }
  return 0;
}

struct Idle {
  double coreShare;  // the used share of a core, in percent
  double wakeUps;    // wake-ups of one thread in a second
  double kibibytes;  // the memory of one thread, or of one port with its thread
};

/// Measures the cost of the objects that `make` creates, while no other thread runs.
template <typename Make>
Idle idleWith(Make make, int count) {
  constexpr double seconds = 1;
  ::malloc_trim(0);
  const double before = residentKibibytes();
  const auto crowd = make();
  std::this_thread::sleep_for(200ms);
  const double memory = residentKibibytes() - before;
  const Usage start = usageOfThisProcess();
  std::this_thread::sleep_for(std::chrono::duration<double>(seconds));
  const Usage end = usageOfThisProcess();
  return {.coreShare = 100 * (end.seconds - start.seconds) / seconds,
          .wakeUps = (end.wakeUps - start.wakeUps) / seconds / count,
          .kibibytes = memory / count};
}

Idle idlePortsOf(int count) {
  return idleWith([=] { return std::make_unique<Crowd>(count, Core::First); }, count);
}

Idle idleThreadsOf(int count) {
  return idleWith([=] { return std::make_unique<BareThreads>(count); }, count);
}

}  // namespace

Rows idlePorts() {
  allowManyDescriptors();
  const Bound bound(Core::First);
  const auto pairs =
      alternate([] { return idlePortsOf(portCount); }, [] { return idleThreadsOf(portCount); });
  Row memory = comparedRow({"B9", "memory of each port and its thread", "<= limit + 16", "KiB"},
                           figuresOf(pairs, &Idle::kibibytes), Best::Highest);
  return {comparedRow({"B9", "1,000 idle ports with their threads", "<= 1.3 x", "% of a core"},
                      figuresOf(pairs, &Idle::coreShare), Best::Lowest),
          comparedRow({"B9", "wake-ups of each port", "<= 10 a second", "a second"},
                      figuresOf(pairs, &Idle::wakeUps), Best::Lowest),
          memory};
}

GrowthTable growingPorts() {
  allowManyDescriptors();
  const Bound bound(Core::First);
  GrowthTable table{
      .title =
          "More and more open ports, each with its thread; the ports are asked one after the other",
      .columns = {"ports", "a status, us", "idle, % of a core",
                  "idle, % of a core per 1,000 ports"},
      .lines = {}};
  for (const int count : {1, 10, 100, 1000}) {
    constexpr std::size_t statuses = 2000;
    const Crowd crowd(count, Core::First);
    std::size_t next = 0;
    const double each = median(secondsOfEach(statuses, [&] {
      QuorPrinterStatus_2 status{};
      crowd.ports()[next++ % crowd.ports().size()]->getParsedStatus(&status, 2);
    }));
    const Usage start = usageOfThisProcess();
    const double seconds = secondsOf([] { std::this_thread::sleep_for(1s); });
    const double share = 100 * (usageOfThisProcess().seconds - start.seconds) / seconds;
    table.lines.push_back(
        {std::to_string(count), figure(each * 1e6), figure(share), figure(share * 1000 / count)});
  }
  return table;
}

}  // namespace quordalvane::bench
