#include "fuzz/Input.h"
#include "tests/model/Scenario.h"

using namespace quordalvane;

/// Tests replies of the Bluetooth module. The first byte sets the time-out, whether the reply must
/// contain a title, and how many characters after the title are requested. The other bytes are the
/// reply, in which each byte 80 (hex) begins a new piece. The port and the test's model of the port
/// must agree in everything.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Input input(data, size);
  const std::uint8_t how = input.byte();
  const auto title = (how & 0x80) != 0 ? std::nullopt : std::optional<std::string>("*AILBA:");
  auto scenario = test::Scenario::in(test::lineMode, 1000);
  scenario.script.deliveries.emplace_back();
  for (const std::uint8_t byte : input.rest()) {
    if (byte == 0x80) {
      scenario.script.deliveries.push_back({{}, scenario.script.deliveries.back().after + 0.2});
    } else {
      scenario.script.deliveries.back().bytes.push_back(byte);
    }
  }
  const auto call = test::getPrinterResponse(title, (how & 0x1f) - 1, (how & 0x60) * 20);
  fuzz::require(scenario.runOnPort(call).report() == scenario.runOnModel(call).report());
  return 0;
}
