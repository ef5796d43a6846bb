#include <cstdio>

#include "fuzz/ArbitraryLink.h"
#include "tests/model/Scenario.h"

using namespace quordalvane;

namespace {

test::Scenario scenarioFrom(fuzz::Input& input) {
  static constexpr std::uint32_t timeouts[] = {0, 999, 1000, 2000};
  const std::uint8_t how = input.byte();
  const std::uint8_t limits = input.byte();
  auto scenario = test::Scenario::in(how % 3, timeouts[how / 4 % 4]);
  scenario.logging = (how & 0x10) == 0;
  scenario.endMillis = timeouts[limits % 4];
  scenario.holdMillis = timeouts[limits / 4 % 4];
  scenario.dataTimeoutSeconds = limits / 16 - 1;
  if ((how & 0x20) != 0) {
    scenario.script.takesAtMost(1 + how / 64);
  }
  return scenario;
}

}  // namespace

/// The first byte chooses the operation, the next two the settings of the port, and the rest the
/// printer's replies. The port and the test's model of the port must agree in the result, the
/// printer status, the properties, and every call, pause and log record.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::vector<test::Call> calls = test::allCalls();
  fuzz::Input input(data, size);
  const test::Call& call = calls[input.byte() % calls.size()];
  test::Scenario scenario = scenarioFrom(input);
  const auto limits = scenario.script;
  scenario.script = fuzz::arbitraryLink(input);
  scenario.script.mostPerWrite = limits.mostPerWrite;
  const std::string onPort = scenario.runOnPort(call).report();
  const std::string onModel = scenario.runOnModel(call).report();
  if (onPort != onModel) {
    std::fprintf(stderr, "%s\n--- port\n%s\n--- model\n%s\n", call.name.c_str(), onPort.c_str(),
                 onModel.c_str());
  }
  fuzz::require(onPort == onModel);
  return 0;
}
