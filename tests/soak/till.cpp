// A till that runs for a long time: till DEVICE LOG-FILE line|escpos
//
// The till reads requests from its standard input, and answers each with one line of JSON:
//
//     print BYTES keep|anew     Prints the job that follows this line and has BYTES bytes, on the
//                               open port (keep) or on a new port (anew). Answers with the outcome.
//     resources                 Closes and releases the port. Answers with the resources that the
//                               process uses.

#include <malloc.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <thread>

#include "backends/Devices.h"
#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "iphone-IOPort/LogWriter.h"
#include "job/PrintJob.h"
#include "logging/JsonFileSink.h"

namespace {

using namespace quordalvane;
using Json = nlohmann::json;
namespace files = std::filesystem;

constexpr const char* tasks = "/proc/self/task";

std::ptrdiff_t entriesOf(const char* folder) {
  return std::distance(files::directory_iterator(folder), {});
}

/// The resident memory of the process, in bytes.
std::uint64_t residentMemory() {
  std::uint64_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages >> pages;
  return pages * 4096;
}

/// The resources that the process uses. The function first waits until at most `threads` threads
/// run, because a port thread ends a moment after its port is closed. It waits at most ten seconds,
/// so a thread that never ends is counted.
Json resources(std::ptrdiff_t threads) {
  using namespace std::chrono_literals;
  if (!LogWriter::sharedInstance().flush(1min)) {
    throw std::runtime_error("the log is not written");
  }
  const auto giveUp = std::chrono::steady_clock::now() + 10s;
  while (entriesOf(tasks) > threads && std::chrono::steady_clock::now() < giveUp) {
    std::this_thread::sleep_for(5ms);
  }
  ::malloc_trim(0);
  return {{"descriptors", entriesOf("/proc/self/fd")},
          {"threads", entriesOf(tasks)},
          {"allocated", ::mallinfo2().uordblks},
          {"resident", residentMemory()}};
}

/// Reads the data of a job, which begins after the line feed of the request.
ByteBuffer receivedData(std::size_t size) {
  std::string text(size, '\0');
  std::cin.ignore();
  std::cin.read(text.data(), static_cast<std::streamsize>(size));
  return {text.begin(), text.end()};
}

class Till {
 public:
  explicit Till(ZKEmulation emulation) : emulation_(emulation) {}
  ~Till() { closePort(); }

  Json print(const ByteBuffer& data, bool anew) {
    if (anew || port_ == nullptr || !port_->isConnected()) {
      closePort();
      port_ = ExternalAccessoryPort::initWithPortName("BT:", "", 10000, emulation_);
      port_->setEndCheckedBlockTimeoutMillis(15000);
      if (!port_->open()) {
        return {{"outcome", "not opened"}, {"accepted", 0}, {"reason", "the port did not open"}};
      }
    }
    const PrintResult result = PrintJob(port_).run(data);
    constexpr const char* outcomes[] = {"printed", "unconfirmed", "refused"};
    return {{"outcome", outcomes[static_cast<int>(result.outcome)]},
            {"accepted", result.bytesAccepted},
            {"reason", result.reason}};
  }

  void closePort() {
    if (port_ != nullptr) {
      port_->close();
      port_.reset();
    }
  }

 private:
  const ZKEmulation emulation_;
  std::shared_ptr<ExternalAccessoryPort> port_;
};

}  // namespace

int main(int, char** arguments) {
  connectDevices({arguments[1]});
  LogWriter& logger = LogWriter::sharedInstance();
  logger.addSink(
      std::make_shared<JsonFileSink>(arguments[2], LogRotation{.maximumBytes = 1U << 20U}));
  logger.setLogging(true);
  const std::ptrdiff_t threads = entriesOf(tasks);
  Till till(std::string(arguments[3]) == "line" ? ZKEmulationQuorLine : ZKEmulationESCPOS);
  for (std::string request; std::cin >> request;) {
    Json answer;
    if (request == "print") {
      std::size_t size = 0;
      std::string port;
      std::cin >> size >> port;
      answer = till.print(receivedData(size), port == "anew");
    } else {
      till.closePort();
      answer = resources(threads);
    }
    std::cout << answer.dump() << std::endl;
  }
  return 0;
}
