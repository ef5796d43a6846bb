#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "job/PrintJob.h"
#include "simulator/PrinterBuilder.h"
#include "tests/support/FaultyAccessory.h"
#include "tests/support/VirtualPlatform.h"

namespace quordalvane {

inline ByteBuffer bytesOf(std::string_view text) {
  return {text.begin(), text.end()};
}

inline const ByteBuffer receiptText = bytesOf("Espresso  2.20\nCake      3.80\nTotal     6.00\n");

inline simulator::Faults with(const char* fault, const char* value) {
  simulator::Faults faults;
  faults.add(fault, value);
  return faults;
}

/// Names the instances of a test that runs in both emulations: "Line" and "EscPos".
inline std::string emulationName(const testing::TestParamInfo<ZKEmulation>& emulation) {
  return emulation.param == ZKEmulationQuorLine ? "Line" : "EscPos";
}

/// A till under virtual time: one printer, and an open port to it.
class Till {
 public:
  struct Setting {
    ZKEmulation emulation = ZKEmulationQuorLine;
    std::string portSettings = {};
    std::uint32_t timeoutMillis = 10000;
    ProofKind proof = ProofKind::Auto;  ///< the `proof=` of the device
  };

  Till(simulator::PrinterBuilder printer, Setting setting)
      : platform(std::make_shared<test::VirtualPlatform>()),
        accessory(std::make_shared<test::FaultyAccessory>(
            identityWith(setting.proof),
            std::make_unique<simulator::VirtualPrinter>(printer.keepPrinted().state()),
            platform->clock())) {
    platform->attach(accessory);
    port = ExternalAccessoryPort::initWithPortName(
        "BT:", setting.portSettings, setting.timeoutMillis, setting.emulation, platform);
    port->open();
  }

  explicit Till(ZKEmulation emulation)
      : Till(simulator::PrinterBuilder(), {.emulation = emulation}) {}

  /// Sets a flag of the printer after `delay`, even during a wait.
  void after(std::chrono::milliseconds delay, std::string_view flag, bool value) {
    at(delay, [this, flag, value] { set(flag, value); });
  }

  void at(std::chrono::milliseconds delay, std::function<void()> event) {
    auto& clock = platform->virtualClock();
    clock.at(clock.monotonic() + delay, std::move(event));
  }

  void set(std::string_view flag, bool value) {
    accessory->withPrinter([flag, value](simulator::VirtualPrinter& printer, auto now) {
      printer.setFlag(flag, value, now);
    });
  }

  /// Closes the port, and opens it again on a link with these faults.
  void reopenWith(simulator::Faults faults) {
    port->close();
    accessory->setFaults(std::move(faults));
    port->open();
  }

  /// Prints a job with the checked block as its proof.
  PrintResult print(const ByteBuffer& data) {
    return PrintJob(port, {.proof = ProofKind::Block}).run(data);
  }

  ByteBuffer printed() {
    ByteBuffer bytes;
    accessory->withPrinter(
        [&bytes](simulator::VirtualPrinter& printer, auto) { bytes = printer.printed(); });
    return bytes;
  }

  static AccessoryIdentity identityWith(ProofKind proof) {
    AccessoryIdentity identity;
    identity.proof = proof;
    return identity;
  }

  const std::shared_ptr<test::VirtualPlatform> platform;
  const std::shared_ptr<test::FaultyAccessory> accessory;
  std::shared_ptr<ExternalAccessoryPort> port;
};

}  // namespace quordalvane
