#include "tools/quorport/Printer.h"

#include <stdexcept>
#include <utility>

#include "backends/DeviceSpec.h"
#include "backends/Devices.h"
#include "platform/Forwarding.h"

namespace quordalvane::tool {
namespace {

using Accessories = std::vector<std::shared_ptr<EAAccessory>>;

std::shared_ptr<ExternalAccessoryPort> makePort(const Options& options,
                                                std::shared_ptr<Platform> platform) {
  auto port = ExternalAccessoryPort::initWithPortName(
      options.portName, options.settings, options.timeout, options.emulation, std::move(platform));
  if (port == nullptr) {
    throw Failure(ExitCode::NoAccessory, "the system cannot start a thread for the port");
  }
  return port;
}

// Takes part in a port's choice and turns the session down.
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

std::string namesOf(const Accessories& accessories) {
  std::string names;
  for (const auto& accessory : accessories) {
    names += (names.empty() ? "" : ", ") + inQuotes(accessory->name().value_or(""));
  }
  return names;
}

Failure whyNotOpen(const InterruptiblePlatform& platform, const Options& options) {
  for (const auto& accessory : platform.accessories()) {
    if (const std::string why = lastOpenError(*accessory); !why.empty()) {
      return {ExitCode::NoAccessory, "the printer cannot be reached: " + printable(why)};
    }
  }
  return noneMatches(platform, options);
}

}  // namespace

std::shared_ptr<InterruptiblePlatform> presentDevices(const Options& options,
                                                      std::shared_ptr<Interruption> interruption) {
  auto platform = std::make_shared<InterruptiblePlatform>(std::move(interruption));
  const auto specs =
      options.devices.empty() ? std::vector<std::string>{"virtual:"} : options.devices;
  for (const std::string& spec : specs) {
    try {
      platform->attach(makeAccessory(parseDeviceSpec(spec), platform->clock()));
    } catch (const std::invalid_argument& error) {
      throw Failure(ExitCode::Usage, std::string("--device: ") + printable(error.what()));
    }
  }
  return platform;
}

std::shared_ptr<EAAccessory> chosenAccessory(const InterruptiblePlatform& platform,
                                             const Options& options) {
  const auto trial = std::make_shared<posix::PosixPlatform>();
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

Failure noneMatches(const InterruptiblePlatform& platform, const Options& options) {
  return {ExitCode::NoAccessory,
          "no accessory matches the port name " + inQuotes(options.portName) +
              ", which takes BT: or BT: and a name, serial number or Bluetooth address; present: " +
              namesOf(platform.accessories())};
}

Printer::Printer(const Options& options, const Surroundings& surroundings)
    : Printer(presentDevices(options, surroundings.interruption), options, surroundings) {}

Printer::Printer(const std::shared_ptr<InterruptiblePlatform>& platform, const Options& options,
                 const Surroundings& surroundings)
    : interruption_(surroundings.interruption), port_(makePort(options, platform)) {
  interruption_->begin();
  if (!port_->open()) {
    interruption_->end();
    port_->close();
    throw whyNotOpen(*platform, options);
  }
  interruption_->beginExchange();
}

Printer::~Printer() {
  interruption_->end();
  port_->close();
}

Failure Printer::failure(const std::string& otherwise) {
  if (port_->isConnected()) {
    return {ExitCode::ExchangeFailed, printable(otherwise)};
  }
  return {ExitCode::LinkLost, "the link to the printer was lost"};
}

}  // namespace quordalvane::tool
