#include "tools/quorport/Printer.h"

#include <chrono>
#include <stdexcept>
#include <thread>
#include <utility>

#include "backends/DeviceSpec.h"
#include "backends/Devices.h"
#include "iphone-IOPort/LogWriter.h"
#include "iphone-IOPort/PortName.h"
#include "platform/Forwarding.h"
#include "text/Quoted.h"
#include "tools/quorport/Joined.h"
#include "tools/quorport/LogOutput.h"
#include "tools/quorport/Streams.h"
#include "tools/quorport/doctor/OpeningFindings.h"

namespace quordalvane::tool {
namespace {

using Accessories = std::vector<std::shared_ptr<EAAccessory>>;

std::shared_ptr<ExternalAccessoryPort> makePort(const Options& options,
                                                std::shared_ptr<Platform> platform) {
  auto port = ExternalAccessoryPort::initWithPortName(
      options.portName, options.settings, options.timeout, options.emulation, std::move(platform));
  if (port == nullptr) {
    throw CommandFailure(ExitCode::NoAccessory, "the system cannot start a thread for the port");
  }
  return port;
}

// An accessory that a port can choose, but that refuses each session.
class Candidate : public ForwardingAccessory {
 public:
  using ForwardingAccessory::ForwardingAccessory;

  std::shared_ptr<EASession> openSession(const std::string& /*protocol*/) override {
    chosen_ = true;
    return nullptr;
  }

  bool isChosen() const { return chosen_; }

 private:
  bool chosen_ = false;
};

// The platform of a port that only chooses an accessory. It reports that the calling thread is not
// the main thread, so that the port starts no thread. It skips the pauses around a session, because
// no session is opened.
class Trial : public ForwardingPlatform {
 public:
  Trial() : Trial(std::make_shared<posix::PosixPlatform>()) {}

  Clock& clock() override { return clock_; }
  bool isMainThread() override { return false; }

  void attach(std::shared_ptr<EAAccessory> accessory) { system_->attach(std::move(accessory)); }

 private:
  class NoPauses : public ForwardingClock {
   public:
    using ForwardingClock::ForwardingClock;
    void usleep(std::uint64_t /*microseconds*/) override {}
    void select(std::int32_t /*microseconds*/) override {}
  };

  explicit Trial(std::shared_ptr<posix::PosixPlatform> system)
      : ForwardingPlatform(system), system_(std::move(system)), clock_(system_->clock()) {}

  const std::shared_ptr<posix::PosixPlatform> system_;
  NoPauses clock_;
};

std::string namesOf(const Accessories& accessories) {
  std::vector<std::string> names;
  for (const auto& accessory : accessories) {
    names.push_back(inQuotes(accessory->name().value_or("")));
  }
  return joined(names, ", ");
}

CommandFailure whyNotOpen(const InterruptiblePlatform& platform, const Options& options) {
  for (const auto& accessory : platform.accessories()) {
    if (const std::string why = lastOpenError(*accessory); !why.empty()) {
      return {codeOfOpening(lastOpenErrorCode(*accessory)),
              "the printer cannot be reached: " + printable(why)};
    }
  }
  return noneMatches(platform, options);
}

// Waits until the port's thread has written its last record; until then the thread keeps the port
// alive.
void awaitRelease(const std::weak_ptr<ExternalAccessoryPort>& port) {
  using namespace std::chrono_literals;
  const auto deadline = std::chrono::steady_clock::now() + 2s;
  while (!port.expired() && std::chrono::steady_clock::now() < deadline) {
    std::this_thread::sleep_for(5ms);
  }
}

}  // namespace

std::vector<std::string> devicesOf(const Options& options) {
  return options.devices.empty() ? std::vector<std::string>{"virtual:"} : options.devices;
}

std::shared_ptr<InterruptiblePlatform> presentDevices(const Options& options,
                                                      const Surroundings& surroundings) {
  auto platform = std::make_shared<InterruptiblePlatform>(surroundings.interruption);
  if (options.devices.empty()) {
    complain("no device is given, so the virtual printer is used; --device names another printer",
             surroundings.streams);
  }
  for (const std::string& spec : devicesOf(options)) {
    try {
      platform->attach(makeAccessory(parseDeviceSpec(spec), platform->clock()), spec);
    } catch (const std::invalid_argument& error) {
      throw CommandFailure(ExitCode::Usage, options.devicesFrom + ": " + printable(error.what()));
    }
  }
  return platform;
}

std::shared_ptr<EAAccessory> chosenAccessory(const InterruptiblePlatform& platform,
                                             const Options& options) {
  const Unrecorded unrecorded;
  const auto trial = std::make_shared<Trial>();
  std::vector<std::shared_ptr<Candidate>> candidates;
  for (const auto& accessory : platform.accessories()) {
    candidates.push_back(std::make_shared<Candidate>(accessory));
    trial->attach(candidates.back());
  }
  const auto port = makePort(options, trial);
  port->open();
  port->close();
  for (std::size_t i = 0; i < candidates.size(); ++i) {
    if (candidates[i]->isChosen()) {
      return platform.accessories()[i];
    }
  }
  return nullptr;
}

CommandFailure noneMatches(const InterruptiblePlatform& platform, const Options& options) {
  const std::string what = prefixLength(options.portName)
                               ? "no accessory matches the port name " + inQuotes(options.portName)
                               : printable(tooShort(options.portName));
  return {ExitCode::NoAccessory,
          what + "; use BT: alone, or with a name, serial number or Bluetooth address; printers: " +
              namesOf(platform.accessories())};
}

Printer::Printer(const Options& options, const Surroundings& surroundings)
    : Printer(presentDevices(options, surroundings), options, surroundings) {}

Printer::Printer(const std::shared_ptr<InterruptiblePlatform>& platform, const Options& options,
                 const Surroundings& surroundings)
    : interruption_(surroundings.interruption),
      platform_(platform),
      port_(makePort(options, platform)) {
  interruption_->begin();
  if (!port_->open()) {
    close();
    throw whyNotOpen(*platform, options);
  }
  interruption_->beginExchange();
}

Printer::~Printer() {
  close();
}

void Printer::close() {
  interruption_->end();
  port_->close();
  if (LogWriter::isLogging()) {
    const std::weak_ptr<ExternalAccessoryPort> released = port_;
    port_.reset();
    awaitRelease(released);
  }
}

/// Notices a loss even if bytes that arrived before the loss have not been read.
bool Printer::isLinkLost() {
  for (const auto& accessory : platform_->accessories()) {
    accessory->noticeLoss();
  }
  return !port_->isConnected();
}

CommandFailure Printer::failure(const InquiryError& error) {
  if (error.cause() == InquiryCause::LinkLost || isLinkLost()) {
    return {ExitCode::LinkLost, "the link to the printer was lost"};
  }
  if (error.cause() == InquiryCause::UnknownEmulation) {
    return {ExitCode::ExchangeFailed,
            error.what() + std::string("; use --emulation line or --emulation escpos")};
  }
  if (error.cause() == InquiryCause::NotReady) {
    return {ExitCode::NotReady, error.what()};
  }
  return {ExitCode::ExchangeFailed, error.what() + portReport()};
}

std::string Printer::portReport() const {
  for (const auto& accessory : platform_->accessories()) {
    if (const std::string state = portState(*accessory); !state.empty()) {
      return "; its port reports: " + state;
    }
  }
  return "";
}

}  // namespace quordalvane::tool
