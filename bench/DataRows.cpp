// Measures how fast a port sends megabytes of print data, and how fast it reads long replies.

#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <atomic>
#include <memory>
#include <stdexcept>
#include <utility>

#include "bench/BareLink.h"
#include "bench/Groups.h"
#include "bench/OpenPort.h"
#include "bench/Peer.h"
#include "job/PrintJob.h"
#include "tests/counts/Allocations.h"
#include "tests/counts/SystemCalls.h"

namespace quordalvane::bench {
namespace {

constexpr std::size_t kibibyte = 1024;
constexpr std::size_t mebibyte = 1024 * kibibyte;

/// A peer that reads everything, and signals when the expected count of bytes has arrived.
class DrainingPeer {
 public:
  explicit DrainingPeer(Core core) : peer_(core) {}
  ~DrainingPeer() { ::close(event_); }
  DrainingPeer(const DrainingPeer&) = delete;
  DrainingPeer& operator=(const DrainingPeer&) = delete;

  void drain(int descriptor) {
    peer_.drain(descriptor, [this](std::size_t count) {
      if ((missing_ -= count) == 0) {
        ::eventfd_write(event_, 1);
      }
    });
  }

  /// Calls `send`, which must send `bytes` bytes. Returns the seconds until all of them have
  /// arrived.
  template <typename Send>
  double secondsFor(std::size_t bytes, Send send) {
    missing_ = bytes;
    return secondsOf([&] {
      send();
      eventfd_t counted = 0;
      ::eventfd_read(event_, &counted);
    });
  }

 private:
  const int event_ = ::eventfd(0, EFD_CLOEXEC);
  std::atomic<std::size_t> missing_ = 0;
  Peer peer_;
};

/// A port and a bare link. Each sends to a `DrainingPeer` of its own.
struct Drains {
  explicit Drains(Medium medium)
      : peer(Core::First),
        barePeer(Core::First),
        endpoint(makeEndpoint(medium)),
        bareEndpoint(makeEndpoint(medium)),
        port(endpoint->device(), ZKEmulationESCPOS),
        bare(bareEndpoint->connect()) {
    peer.drain(endpoint->accept());
    barePeer.drain(bareEndpoint->accept());
  }

  DrainingPeer peer;
  DrainingPeer barePeer;
  const std::unique_ptr<Endpoint> endpoint;
  const std::unique_ptr<Endpoint> bareEndpoint;
  OpenPort port;
  BareLink bare;
};

void print(OpenPort& port, std::span<const std::uint8_t> data) {
  PrintJob job(port.shared(), {.proof = ProofKind::None});
  if (job.run(data).bytesAccepted != data.size()) {
    throw std::runtime_error("a job was not sent whole");
  }
}

/// Returns the median throughput of several jobs of one size, in MiB/s.
Pairs<double> throughput(Drains& drains, std::span<const std::uint8_t> data) {
  const auto mebibytes = static_cast<double>(data.size()) / static_cast<double>(mebibyte);
  const int jobs = data.size() > mebibyte ? 3 : 31;
  const auto rate = [&](auto secondsOfJob) {
    Figures rates;
    for (int i = 0; i < jobs; ++i) {
      rates.push_back(mebibytes / secondsOfJob());
    }
    return median(rates);
  };
  const auto ours = [&] {
    return drains.peer.secondsFor(data.size(), [&] { print(drains.port, data); });
  };
  const auto limit = [&] {
    return drains.barePeer.secondsFor(data.size(), [&] { drains.bare.write(data); });
  };
  return alternate([&] { return rate(ours); }, [&] { return rate(limit); });
}

/// Counts the bytes of memory that a job allocates. The job fills each buffer at most once, so it
/// cannot copy more bytes than it allocates.
Row copiedBytes(const std::string& where, OpenPort& port, DrainingPeer& peer,
                std::span<const std::uint8_t> data) {
  Allocations taken;
  peer.secondsFor(data.size(), [&] { taken = allocationsOf([&] { print(port, data); }); });
  return {.heading = {"B4", "bytes copied for a job of 64 MiB" + where, "<= 2 x", "payloads"},
          .ours = static_cast<double>(taken.bytes) / static_cast<double>(data.size()),
          .limit = 1};
}

void printDataOver(Medium medium, const std::string& where, Rows& rows) {
  Drains drains(medium);
  const std::vector<std::uint8_t> data(64 * mebibyte, ' ');
  const std::span<const std::uint8_t> all(data);
  rows.push_back(comparedRow({"B4", "a job of 64 MiB" + where, ">= 0.8 x", "MiB/s"},
                             throughput(drains, all), Best::Highest));
  rows.push_back(comparedRow({"B4", "a job of 1 MiB" + where, ">= 0.8 x", "MiB/s"},
                             throughput(drains, all.first(mebibyte)), Best::Highest));
  rows.push_back(copiedBytes(where, drains.port, drains.peer, all));
}

/// Reads only bytes that have already arrived; a read never waits for the peer.
class ReadAhead {
 public:
  static constexpr std::size_t portion = 32 * kibibyte;

  ReadAhead()
      : endpoint_(makeEndpoint(Medium::Tcp)),
        port_(endpoint_->device(), ZKEmulationQuorLine),
        feed_(endpoint_->accept()),
        bare_(endpoint_->connect()),
        bareFeed_(endpoint_->accept()) {}
  ~ReadAhead() {
    ::close(feed_);
    ::close(bareFeed_);
  }
  ReadAhead(const ReadAhead&) = delete;
  ReadAhead& operator=(const ReadAhead&) = delete;

  void feed() { sendAll(feed_, bytes_); }
  void feedBare() { sendAll(bareFeed_, bytes_); }

  void read() {
    constexpr std::size_t readSize = 512;
    std::size_t count = 0;
    while (count < portion) {
      const auto bytes = port_->read(readSize);
      count += bytes ? bytes->size() : throw std::runtime_error("a read has failed");
    }
  }

  void readBare() {
    std::array<std::uint8_t, 128> buffer;
    std::size_t count = 0;
    while (count < portion) {
      count += bare_.read(buffer);
    }
  }

 private:
  const std::vector<std::uint8_t> bytes_ = std::vector<std::uint8_t>(portion, '*');
  const std::unique_ptr<Endpoint> endpoint_;
  OpenPort port_;
  const int feed_;
  BareLink bare_;
  const int bareFeed_;
};

/// Reads 1 MiB in portions. Returns the rate of the median portion, in MiB/s.
template <typename Feed, typename Read>
double readingRate(Feed feed, Read read) {
  Figures seconds;
  for (std::size_t count = 0; count < mebibyte; count += ReadAhead::portion) {
    feed();
    seconds.push_back(secondsOf(read));
  }
  return static_cast<double>(ReadAhead::portion) / static_cast<double>(mebibyte) / median(seconds);
}

Row countedCalls(const Heading& heading, const SystemCalls& ours, const SystemCalls& bare,
                 std::initializer_list<long> numbers) {
  Row row{.heading = heading};
  for (const long number : numbers) {
    row.ours += static_cast<double>(countOf(ours, number));
    row.limit += static_cast<double>(countOf(bare, number));
  }
  return row;
}

}  // namespace

Rows printData() {
  const Bound bound(Core::First);
  Rows rows;
  printDataOver(Medium::Tcp, " over TCP", rows);
  printDataOver(Medium::Local, " over a Unix socket", rows);
  return rows;
}

Rows reading() {
  const Bound bound(Core::First);
  ReadAhead ahead;
  const auto pairs =
      alternate([&] { return readingRate([&] { ahead.feed(); }, [&] { ahead.read(); }); },
                [&] { return readingRate([&] { ahead.feedBare(); }, [&] { ahead.readBare(); }); });
  Rows rows = {comparedRow({"B5", "1 MiB read, 512 bytes a call", ">= 0.8 x", "MiB/s"}, pairs,
                           Best::Highest)};
  ahead.feed();
  ahead.feedBare();
  const auto ours = systemCallsOf([&] { ahead.read(); });
  const auto bare = systemCallsOf([&] { ahead.readBare(); });
  if (ours && bare) {
    rows.push_back(
        countedCalls({"B5", "read calls for 32 KiB, 512 bytes a call", "<= 1.05 x", "calls"}, *ours,
                     *bare, {SYS_read, SYS_recvfrom}));
    rows.push_back(countedCalls({"B5", "readiness waits for these 32 KiB", "0", "calls"}, *ours,
                                *bare,
                                {SYS_poll, SYS_ppoll, SYS_select, SYS_pselect6, SYS_epoll_wait}));
  }
  return rows;
}

GrowthTable growingJobs() {
  const Bound bound(Core::First);
  Drains drains(Medium::Tcp);
  GrowthTable table{.title = "Jobs of growing size over TCP, each until its last byte has arrived",
                    .columns = {"job, KiB", "our time, us", "our time per MiB, us",
                                "time of a bare job per MiB, us"},
                    .lines = {}};
  const std::vector<std::uint8_t> data(64 * mebibyte, ' ');
  for (std::size_t size = kibibyte; size <= data.size(); size *= 4) {
    const auto pairs = throughput(drains, std::span(data).first(size));
    const double each = 1e6 / highest(pairs.ours);
    const auto mebibytes = static_cast<double>(size) / static_cast<double>(mebibyte);
    table.lines.push_back({std::to_string(size / kibibyte), figure(each * mebibytes), figure(each),
                           figure(1e6 / highest(pairs.limit))});
  }
  return table;
}

}  // namespace quordalvane::bench
