#include "fuzz/ArbitraryLink.h"
#include "job/PrintData.h"
#include "job/PrintJob.h"
#include "tests/support/ScriptedWorld.h"

using namespace quordalvane;
using fuzz::require;

/// Prints a job with arbitrary data on a printer that sends arbitrary replies. The job must end,
/// and must count its bytes correctly. The job may count as printed only if it was sent completely,
/// and if nothing in its data could have caused the printer's confirmation. The first byte is the
/// emulation, the second is the length of the data.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const auto emulation = input.byte() % 2 == 0 ? ZKEmulationQuorLine : ZKEmulationESCPOS;
  const fuzz::Bytes job = input.bytes(input.byte());
  test::ScriptedWorld world(fuzz::arbitraryLink(input));
  const auto port =
      ExternalAccessoryPort::initWithPortName("BT:", "d3", 1000, emulation, world.platform());
  require(port->open());
  world.start();
  const PrintResult result = PrintJob(port).run(job);
  require(result.bytesTotal == job.size() && result.bytesAccepted <= job.size());
  require(result.reason.empty() == (result.outcome == PrintOutcome::Printed));
  require((result.outcome == PrintOutcome::Refused) <= (result.bytesAccepted == 0));
  if (result.outcome == PrintOutcome::Printed) {
    require(result.bytesAccepted == job.size() && !confirmationObstacle(job, emulation));
  }
  for (std::size_t place = 0; place < job.size(); ++place) {
    const std::size_t end = commandEnd(job, place);
    require(end >= place && end <= job.size());
  }
  return 0;
}
