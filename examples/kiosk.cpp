// Prints each line of its input as a receipt. The first word of the line is the name of the job.
// The program may be killed at any moment and started again with the same input: it prints each
// receipt only once. It continues after the printer's cable was pulled and plugged in again. Usage:
// kiosk DEVICE [JOURNAL]
#include <chrono>
#include <exception>
#include <iostream>
#include <string>

#include "backends/Devices.h"
#include "backends/posix/AccessoryNotices.h"
#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "job/PrintJob.h"
#include "journal/NamedJob.h"

using namespace quordalvane;

namespace {

// Each attempt opens a new link, so that it never reads answers to an earlier attempt.
NamedJobResult printNow(NamedJob& named) {
  const auto port = ExternalAccessoryPort::initWithPortName("BT:", "", 3000, ZKEmulationQuorLine);
  if (!port || !port->open()) {
    PrintResult unreachable;
    unreachable.reason = "cannot be reached";
    return named.refuse(unreachable);
  }
  PrintJob job(port, named.recorded());
  NamedJobResult result = named.run(job);
  port->close();
  return result;
}

NamedJobResult attempt(Journal& journal, const std::string& device, const std::string& receipt) {
  const ByteBuffer data(receipt.begin(), receipt.end());
  const std::string name = receipt.substr(0, receipt.find_first_of(" \n"));
  NamedJob named(journal, {.name = name, .device = device}, data);
  return named.answer() ? *named.answer() : printNow(named);
}

// Repeats a refused receipt until it is sent: every half second, and at once when the printer is
// plugged in again. Never repeats a receipt that may be on paper.
void print(Journal& journal, const std::string& device, const std::string& receipt) {
  posix::AccessoryNotices notices;
  for (std::string last;; notices.await(std::chrono::milliseconds(500))) {
    const NamedJobResult named = attempt(journal, device, receipt);
    const PrintResult& result = named.result;
    if (result.outcome == PrintOutcome::Printed) {
      std::cout << (named.isRepeated ? "printed before" : "printed") << std::endl;
      return;
    }
    if (result.outcome == PrintOutcome::Unconfirmed) {
      std::cout << "call the staff: " << result.reason << std::endl;
      return;
    }
    if (result.reason != last) {
      std::cout << "waiting: " << (last = result.reason) << std::endl;
    }
  }
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc != 2 && argc != 3) {
    std::cerr << "usage: kiosk DEVICE [JOURNAL]\n";
    return 2;
  }
  connectDevices({argv[1]});
  Journal journal(argc == 3 ? argv[2] : Journal::defaultFile());
  for (std::string line; std::getline(std::cin, line);) {
    print(journal, argv[1], line + "\n");
  }
} catch (const std::exception& error) {  // an invalid DEVICE, or a file that is no JOURNAL
  std::cerr << error.what() << '\n';
  return 2;
}
