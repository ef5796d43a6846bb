// The speed of whole jobs in virtual time.

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "backends/virtual/VirtualAccessory.h"
#include "bench/Cores.h"
#include "bench/Groups.h"
#include "job/PrintJob.h"
#include "simulator/PrinterBuilder.h"
#include "tests/support/VirtualPlatform.h"

namespace quordalvane::bench {
namespace {

// The speed, in bytes a second, of a thermal printer that prints about thirty lines a second.
constexpr std::uint32_t bytesPerSecond = 1000;

ByteBuffer receipt() {
  std::ifstream file(QUOR_BENCH_RECEIPT, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void printOnce(const std::shared_ptr<test::VirtualPlatform>& platform, ZKEmulation emulation,
               const ByteBuffer& data) {
  const auto port = ExternalAccessoryPort::initWithPortName("BT:", "", 10000, emulation, platform);
  if (!port->open() || PrintJob(port).run(data).outcome != PrintOutcome::Printed) {
    throw std::runtime_error("a simulated job was not printed");
  }
  port->close();
}

/// Returns how many seconds of virtual time pass in a real second, as the median of many batches of
/// jobs.
double speedOfJobs(ZKEmulation emulation, const ByteBuffer& data) {
  constexpr int batches = 25;
  constexpr int jobs = 10;
  const auto platform = std::make_shared<test::VirtualPlatform>();
  const auto printer = simulator::PrinterBuilder().speed(bytesPerSecond);
  const auto accessory = std::make_shared<virtuals::VirtualAccessory>(
      AccessoryIdentity{}, std::make_unique<simulator::VirtualPrinter>(printer.state()),
      platform->clock());
  platform->attach(accessory);
  Figures speeds;
  for (int batch = 0; batch < batches; ++batch) {
    const auto start = platform->clock().monotonic();
    const double real = secondsOf([&] {
      for (int i = 0; i < jobs; ++i) {
        printOnce(platform, emulation, data);
        accessory->withPrinter([](auto& its, auto) { its.tearOff(); });
      }
    });
    const std::chrono::duration<double> passed = platform->clock().monotonic() - start;
    speeds.push_back(passed.count() / real);
  }
  return median(speeds);
}

Row jobsRow(const std::string& mode, ZKEmulation emulation, const ByteBuffer& data) {
  Figures speeds;
  for (int i = 0; i < pairCount; ++i) {
    speeds.push_back(speedOfJobs(emulation, data));
  }
  return comparedRow({"B13", mode + " jobs under virtual time", ">= 10,000 x", "s a second"},
                     {.ours = speeds, .limit = Figures(speeds.size(), 1)}, Best::Highest);
}

}  // namespace

Rows virtualTime() {
  const Bound bound(Core::First);
  const ByteBuffer data = receipt();
  return {jobsRow("line-mode", ZKEmulationQuorLine, data),
          jobsRow("ESC/POS", ZKEmulationESCPOS, data)};
}

}  // namespace quordalvane::bench
