// Reports each change of a printer's state, until you stop the program. Usage: status_monitor
// DEVICE
#include <chrono>
#include <exception>
#include <iostream>
#include <string>
#include <thread>

#include "backends/Devices.h"
#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "job/PrinterInquiry.h"

using namespace quordalvane;

namespace {

std::string inWords(const QuorPrinterStatus_2& status) {
  std::string words = status.offline ? "off line" : "on line";
  words += status.coverOpen ? ", cover open" : "";
  words += status.receiptPaperEmpty ? ", out of paper" : "";
  words += status.receiptPaperNearEmptyInner ? ", paper near its end" : "";
  words += status.paperPresent ? ", a receipt waits in the exit" : "";
  return words;
}

// Asks for the status. Opens the port first if its link was lost.
std::string ask(ExternalAccessoryPort& port) {
  try {
    if (!port.isConnected() && !port.open()) {
      port.close();
      return "cannot be reached";
    }
    return inWords(PrinterInquiry(port.shared_from_this()).status());
  } catch (const InquiryError& error) {
    if (error.cause() == InquiryCause::LinkLost) {
      port.close();
      return "link lost";
    }
    return error.what();
  }
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc != 2) {
    std::cerr << "usage: status_monitor DEVICE\n";
    return 2;
  }
  connectDevices({argv[1]});
  const auto port = ExternalAccessoryPort::initWithPortName("BT:", "", 3000, ZKEmulationQuorLine);
  for (std::string last; port; std::this_thread::sleep_for(std::chrono::milliseconds(500))) {
    if (const std::string now = ask(*port); now != last) {
      std::cout << (last = now) << std::endl;
    }
  }
} catch (const std::exception& error) {  // a DEVICE that does not exist, for example
  std::cerr << error.what() << '\n';
  return 2;
}
