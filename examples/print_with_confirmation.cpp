// Prints a file, and says what the user must do next. Usage: print_with_confirmation DEVICE FILE
#include <exception>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>

#include "backends/Devices.h"
#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "job/PrintJob.h"

using namespace quordalvane;

int main(int argc, char** argv) try {
  if (argc != 3) {
    std::cerr << "usage: print_with_confirmation DEVICE FILE\n";
    return 2;
  }
  std::ifstream file(argv[2], std::ios::binary);
  if (!file) {
    std::cerr << "cannot read " << argv[2] << '\n';
    return 2;
  }
  const std::string receipt{std::istreambuf_iterator<char>(file), {}};

  connectDevices({argv[1]});
  const auto port = ExternalAccessoryPort::initWithPortName("BT:", "", 10000, ZKEmulationQuorLine);
  if (!port || !port->open()) {
    std::cerr << "no printer: nothing was sent, try again later\n";
    return 1;
  }
  const PrintResult result = PrintJob(port).run(receipt);
  port->close();

  switch (result.outcome) {
    case PrintOutcome::Printed:
      std::cout << "printed: hand the receipt over\n";
      return 0;
    case PrintOutcome::Refused:
      // Nothing was sent. Remove the cause and send the same job again.
      std::cout << "refused: " << result.reason << "; " << result.advice << '\n';
      return 1;
    case PrintOutcome::Unconfirmed:
      // The job may be on paper. A program must not send it again, because only a person who looks
      // at the paper knows whether the job is printed.
      std::cout << "unconfirmed: " << result.reason << "; " << result.advice << '\n';
      return 6;
  }
} catch (const std::exception& error) {  // a DEVICE that does not exist, for example
  std::cerr << error.what() << '\n';
  return 2;
}
