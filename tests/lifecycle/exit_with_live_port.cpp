// A program that ends while its port thread runs and its logger is busy. Its argument says how it
// ends.

#include <cstdlib>
#include <cstring>
#include <iostream>

#include "backends/Devices.h"
#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "iphone-IOPort/LogWriter.h"
#include "logging/CallbackSink.h"

int main(int count, char** arguments) {
  using namespace quordalvane;
  LogWriter& logger = LogWriter::sharedInstance();
  logger.setTargetLogLevels({0, 1});
  logger.addSink(std::make_shared<CallbackSink>([](const LogRecord&) {}));
  logger.setLogging(true);
  connectDevices({"virtual:"});
  static const auto port =
      ExternalAccessoryPort::initWithPortName("BT:", "", 1000, ZKEmulationQuorLine);
  const char* how = count > 1 ? arguments[1] : "return";
  if (std::strcmp(how, "exit") == 0) {
    std::exit(port != nullptr ? 0 : 1);
  }
  if (std::strcmp(how, "quick") == 0) {
    std::quick_exit(port != nullptr ? 0 : 1);
  }
  return port != nullptr ? 0 : 1;
}
