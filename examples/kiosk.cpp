// Prints each line of its input as a receipt, and goes on when the printer's cable was pulled and
// put back. Usage: kiosk DEVICE
#include <chrono>
#include <exception>
#include <iostream>
#include <string>
#include <thread>

#include "backends/Devices.h"
#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "job/PrintJob.h"

using namespace quordalvane;

namespace {

// One attempt over a link of its own, so that an attempt never meets what an earlier one left.
PrintResult attempt(const std::string& receipt) {
  const auto port = ExternalAccessoryPort::initWithPortName("BT:", "", 3000, ZKEmulationQuorLine);
  PrintResult result;
  result.reason = "cannot be reached";
  if (port && port->open()) {
    result = PrintJob(port).run(receipt);
  }
  if (port) {
    port->close();
  }
  return result;
}

// A refused receipt is tried until it goes out. One that may be on paper is never sent again.
void print(const std::string& receipt) {
  for (std::string last;; std::this_thread::sleep_for(std::chrono::milliseconds(500))) {
    const PrintResult result = attempt(receipt);
    if (result.outcome == PrintOutcome::Printed) {
      std::cout << "printed" << std::endl;
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
  if (argc != 2) {
    std::cerr << "usage: kiosk DEVICE\n";
    return 2;
  }
  connectDevices({argv[1]});
  for (std::string line; std::getline(std::cin, line);) {
    print(line + "\n");
  }
} catch (const std::exception& error) {  // a DEVICE that does not exist, for example
  std::cerr << error.what() << '\n';
  return 2;
}
