// The speed at which the virtual printer draws receipts.

#include <ctime>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "bench/Cores.h"
#include "bench/Groups.h"
#include "simulator/PrinterBuilder.h"
#include "simulator/PrinterLink.h"
#include "simulator/drawing/ImageRendering.h"

namespace quordalvane::bench {
namespace {

simulator::Bytes receipt() {
  std::ifstream file(QUOR_BENCH_RECEIPT, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

double processorSeconds() {
  timespec time{};
  ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

void printAndDraw(const simulator::Bytes& job) {
  simulator::VirtualPrinter printer(simulator::PrinterBuilder().state());
  simulator::PrinterLink link(printer, {});
  if (link.write(job, {}) != job.size() || simulator::renderPng(printer.paper()).empty()) {
    throw std::runtime_error("a simple receipt was not drawn");
  }
}

double picturesASecond(const simulator::Bytes& job) {
  constexpr int pictures = 200;
  const double begin = processorSeconds();
  for (int i = 0; i < pictures; ++i) {
    printAndDraw(job);
  }
  return pictures / (processorSeconds() - begin);
}

}  // namespace

// Measures in processor seconds, which other programs on the machine do not affect.
Rows receiptPictures() {
  constexpr double wanted = 200;
  const Bound bound(Core::First);
  const simulator::Bytes job = receipt();
  Figures speeds;
  for (int i = 0; i < pairCount; ++i) {
    speeds.push_back(picturesASecond(job));
  }
  return {comparedRow({"B20", "pictures of a simple receipt on one core", ">= 1 x", "a CPU second"},
                      {.ours = speeds, .limit = Figures(speeds.size(), wanted)}, Best::Highest)};
}

}  // namespace quordalvane::bench
