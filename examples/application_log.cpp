// Sends the library's diagnostic records through the application's own logger. Usage:
// application_log DEVICE
#include <exception>
#include <iostream>
#include <memory>
#include <string>

#include "backends/Devices.h"
#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "iphone-IOPort/LogWriter.h"
#include "job/PrinterInquiry.h"
#include "logging/CallbackSink.h"

using namespace quordalvane;

namespace {

// The application's own logger; the library's writer thread calls it.
void applicationLog(const char* severity, const std::string& text) {
  std::clog << "shop[" << severity << "]: " << text << '\n';
}

void passOn(const LogRecord& record) {
  const char* severity = record.type == ZKLogTypeError ? "error" : "debug";
  applicationLog(severity, std::string(record.method) + " " + record.message);
}

}  // namespace

int main(int argc, char** argv) try {
  if (argc != 2) {
    std::cerr << "usage: application_log DEVICE\n";
    return 2;
  }
  LogWriter& logger = LogWriter::sharedInstance();
  const auto sink = std::make_shared<CallbackSink>(passOn);
  logger.addSink(sink);
  LogWriter::setTargetLogLevels({0});
  LogWriter::setLogging(true);

  connectDevices({argv[1]});
  const auto port = ExternalAccessoryPort::initWithPortName("BT:", "", 3000, ZKEmulationQuorLine);
  std::string state = "no answer";
  try {
    if (port && port->open()) {
      state = PrinterInquiry(port).isOnline() ? "on line" : "off line";
    }
  } catch (const InquiryError&) {  // the log contains the reason
  }
  std::cout << state << '\n';
  if (port) {
    port->close();
  }

  logger.flush();  // now every record has reached the application
  logger.removeSink(sink);
  return state == "on line" ? 0 : 1;
} catch (const std::exception& error) {  // a DEVICE that does not exist, for example
  std::cerr << error.what() << '\n';
  return 2;
}
