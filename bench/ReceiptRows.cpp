// A receipt that the printer confirms, compared with a bare exchange of the same bytes.

#include <algorithm>
#include <array>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include "bench/BareLink.h"
#include "bench/Endpoint.h"
#include "bench/Groups.h"
#include "bench/OpenPort.h"
#include "bench/ReceiptKinds.h"
#include "job/PrintJob.h"

namespace quordalvane::bench {
namespace {

using namespace std::chrono_literals;

constexpr double millisecond = 1e3;
constexpr std::size_t receiptSize = 450;

std::vector<std::uint8_t> receipt() {
  std::vector<std::uint8_t> data(receiptSize, 'e');
  data.front() = firstOfReceipt;
  data.back() = '\n';
  return data;
}

/// An open port to one printer, and a bare link to another printer of the same kind.
struct Counters {
  explicit Counters(const ReceiptKind& kind, std::chrono::milliseconds printingTime = {})
      : endpoint(makeEndpoint(Medium::Tcp)),
        bareEndpoint(makeEndpoint(Medium::Tcp)),
        port(endpoint->device(), kind.emulation),
        bare(bareEndpoint->connect()) {
    const auto made = [&](Endpoint& place) {
      return std::make_unique<ReceiptPrinter>(place.accept(), Core::First, kind.confirms,
                                              printingTime);
    };
    printer = made(*endpoint);
    barePrinter = made(*bareEndpoint);
  }

  const std::unique_ptr<Endpoint> endpoint;
  const std::unique_ptr<Endpoint> bareEndpoint;
  // The printers are destroyed after `port` and `bare`, because the destructor of a printer waits
  // until its other side has closed the connection.
  std::unique_ptr<ReceiptPrinter> printer;
  std::unique_ptr<ReceiptPrinter> barePrinter;
  OpenPort port;
  BareLink bare;
};

void print(OpenPort& port, std::span<const std::uint8_t> data) {
  const PrintResult result = PrintJob(port.shared()).run(data);
  if (result.outcome != PrintOutcome::Printed) {
    throw std::runtime_error("a receipt was not confirmed: " + result.reason);
  }
}

/// Returns the turns before the receipt, in which the port only asks the printer. The turn with the
/// first byte of the receipt is left out.
std::vector<ReceiptPrinter::Turn> questionsOf(std::vector<ReceiptPrinter::Turn> turns) {
  std::size_t count = 0;
  for (const auto& turn : turns) {
    if (std::find(turn.heard.begin(), turn.heard.end(), firstOfReceipt) != turn.heard.end()) {
      break;
    }
    ++count;
  }
  turns.resize(count);
  return turns;
}

/// Repeats `turns` by direct system calls. For each turn, writes the bytes that the printer
/// received, and waits for its answer if there was one.
void exchange(BareLink& bare, const std::vector<ReceiptPrinter::Turn>& turns) {
  std::array<std::uint8_t, 64> answer;
  for (const auto& turn : turns) {
    if (turn.answer.empty()) {
      bare.write(turn.heard);
    } else {
      bare.exchange(turn.heard, std::span(answer).first(turn.answer.size()));
    }
  }
}

/// Prints `data`. Returns the time in seconds until the printer receives the first byte of `data`.
double secondsToFirstByte(Counters& counters, std::span<const std::uint8_t> data) {
  const auto start = std::chrono::steady_clock::now();
  print(counters.port, data);
  return std::chrono::duration<double>(counters.printer->heardDataAt() - start).count();
}

void addRowsOf(const ReceiptKind& kind, Rows& confirmed, Rows& firstByte) {
  constexpr int jobs = 21;
  const Bound bound(Core::First);
  Counters counters(kind);
  const auto data = receipt();
  // The first print is not measured, because it does work that is done only once.
  print(counters.port, data);
  counters.printer->forget();
  print(counters.port, data);
  const auto turns = counters.printer->turns();
  const auto questions = questionsOf(turns);
  const auto whole = alternate(
      [&] { return median(secondsOfEach(jobs, [&] { print(counters.port, data); })); },
      [&] { return median(secondsOfEach(jobs, [&] { exchange(counters.bare, turns); })); });
  confirmed.push_back(
      comparedRow({"B15", std::string("a confirmed receipt of 450 bytes, ") + kind.name,
                   "<= limit + 5 ms", "ms"},
                  whole, Best::Lowest, millisecond));
  const auto beginnings = alternate(
      [&] {
        Figures seconds;
        for (int i = 0; i < jobs; ++i) {
          seconds.push_back(secondsToFirstByte(counters, data));
        }
        return median(seconds);
      },
      [&] { return median(secondsOfEach(jobs, [&] { exchange(counters.bare, questions); })); });
  firstByte.push_back(
      comparedRow({"B16", std::string("from a job's start to its first byte, ") + kind.name,
                   "<= limit + 2 ms", "ms"},
                  beginnings, Best::Lowest, millisecond));
}

Row signRow(const ReceiptKind& kind) {
  constexpr auto printingTime = 3s;
  const Bound bound(Core::First);
  Counters counters(kind, printingTime);
  print(counters.port, receipt());
  const auto waited = std::chrono::steady_clock::now() - counters.printer->confirmedAt();
  return {.heading = {"B18", std::string("from the printer's sign to the outcome, ") + kind.name,
                      kind.goalOfSign, "ms"},
          .ours = std::chrono::duration<double>(waited).count() * millisecond,
          .limit = 0};
}

}  // namespace

Rows confirmedReceipts() {
  Rows rows;
  Rows firstByte;
  for (const ReceiptKind& kind : receiptKinds) {
    addRowsOf(kind, rows, firstByte);
  }
  rows.insert(rows.end(), firstByte.begin(), firstByte.end());
  return rows;
}

Rows signsOfSlowPrinters() {
  Rows rows;
  for (const ReceiptKind& kind : receiptKinds) {
    rows.push_back(signRow(kind));
  }
  return rows;
}

}  // namespace quordalvane::bench
