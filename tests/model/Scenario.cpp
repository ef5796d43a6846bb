#include "tests/model/Scenario.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "tests/model/Bounds.h"
#include "tests/model/ModelReplies.h"
#include "tests/support/LogCapture.h"

namespace quordalvane::test {
namespace {

std::string shownOr(const std::optional<std::string>& text) {
  return text ? '"' + *text + '"' : "none";
}

template <typename Port>
std::string propertiesOf(const Port& port) {
  std::ostringstream text;
  text << "firmwareInformation " << shownOr(port.firmwareInformation()) << "\ndipSwitchInformation";
  for (const Bytes& bank : port.dipSwitchInformation()) {
    text << ' ' << shown(bank);
  }
  const auto result = port.result71();
  text << "\nisBrondel " << port.isBrondel() << "\nresult71 "
       << (result ? std::to_string(*result) : "none") << "\nname " << shownOr(port.name())
       << "\nserialNumber " << shownOr(port.serialNumber()) << "\nconnectionID "
       << port.connectionID() << "\nendCheckedBlockTimeoutMillis "
       << port.endCheckedBlockTimeoutMillis() << "\nholdPrintTimeoutMillis "
       << port.holdPrintTimeoutMillis() << "\ndataTimeoutSeconds " << port.dataTimeoutSeconds()
       << '\n';
  return text.str();
}

std::string shownStatus(const QuorPrinterStatus_2& status) {
  std::ostringstream text;
  for (const Flag& flag : flags) {
    text << flag.name << ' ' << status.*flag.member << ", ";
  }
  text << "etbCounter " << int{status.etbCounter} << ", presenterState "
       << int{status.presenterState} << ", connectedInterface " << int{status.connectedInterface}
       << ", rawLength " << status.rawLength << ", raw " << shown(status.raw) << '\n';
  return text.str();
}

/// Prepares the port and runs the call on it.
template <typename Port, typename Side>
Outcome runOn(Port& port, const Scenario& scenario, ScriptedWorld& world, Side side,
              const Call& call) {
  if (scenario.endMillis) {
    port.setEndCheckedBlockTimeoutMillis(*scenario.endMillis);
  }
  if (scenario.holdMillis) {
    port.setHoldPrintTimeoutMillis(*scenario.holdMillis);
  }
  if (scenario.dataTimeoutSeconds) {
    port.setDataTimeoutSeconds(*scenario.dataTimeoutSeconds);
  }
  Outcome run;
  run.opened = scenario.isOpen && port.open();
  EXPECT_TRUE(run.opened || !scenario.isOpen || scenario.opens == Scenario::Opens::Perhaps);
  world.trace().name(&run.caller.status, "<status>");
  world.trace().name(&run.caller.onlineStatus, "<online>");
  run.caller.trace = &world.trace();
  const Logging logging(scenario.logging, scenario.levels);
  world.start();
  const auto start = world.machine().virtualClock().monotonic();
  run.result = (call.*side)(port, run.caller);
  const auto taken = world.machine().virtualClock().monotonic() - start;
  run.seconds = std::chrono::duration<double>(taken).count();
  run.lines = world.trace().lines();
  run.properties = propertiesOf(port);
  run.caller.trace = nullptr;
  return run;
}

/// The first difference of two texts, with the lines before it; "" if the texts are equal.
std::string firstDifference(const char* firstName, const std::string& first, const char* secondName,
                            const std::string& second) {
  if (first == second) {
    return "";
  }
  constexpr std::ptrdiff_t before = 800;
  constexpr std::ptrdiff_t behind = 400;
  const auto length = static_cast<std::ptrdiff_t>(std::min(first.size(), second.size()));
  const auto differ = std::mismatch(first.begin(), first.begin() + length, second.begin());
  const auto place = differ.first - first.begin();
  const auto common = std::max<std::ptrdiff_t>(0, place - before);
  const auto rest = [&](const std::string& text) {
    const auto end = std::min(static_cast<std::ptrdiff_t>(text.size()), place + behind);
    return std::string(text.begin() + place, text.begin() + end);
  };
  return "both: ..." + std::string(first.begin() + common, first.begin() + place) + "\n--- " +
         firstName + " continues: " + rest(first) + "\n--- " + secondName +
         " continues: " + rest(second) + "\n";
}

}  // namespace

Bytes Outcome::sent() const {
  Bytes sent;
  for (const Line& line : lines) {
    constexpr std::string_view begin = "output.write <";
    if (line.text.starts_with(begin)) {
      const std::size_t end = line.text.find('>');
      Bytes offered = bytes(line.text.substr(begin.size(), end - begin.size()));
      const long taken = std::stol(line.text.substr(line.text.find("-> ") + 3));
      offered.resize(taken < 0 ? 0 : static_cast<std::size_t>(taken));
      sent = sent + offered;
    }
  }
  return sent;
}

std::string Outcome::report() const {
  return std::string(opened ? "opened, " : "not opened, ") + "result " + result + "\nresultCode " +
         std::to_string(caller.resultCode) + "\nonlineStatus " +
         std::to_string(caller.onlineStatus) + "\n" + shownStatus(caller.status) + properties +
         whole(lines);
}

Scenario Scenario::in(std::int32_t emulation, std::uint32_t timeout) {
  return {.creation = {.timeout = timeout, .emulation = emulation}};
}

void Scenario::prepare(ScriptedWorld& world) const {
  if (systemVersion) {
    world.machine().setSystemVersion(*systemVersion);
  }
}

Outcome Scenario::runOnPort(const Call& call) const {
  ScriptedWorld world(script, accessories, layer);
  prepare(world);
  const auto port = ExternalAccessoryPort::initWithPortName(
      creation.portName, creation.portSettings, creation.timeout,
      static_cast<ZKEmulation>(creation.emulation), world.platform());
  world.trace().name(port.get(), "<self>");
  return runOn(*port, *this, world, &Call::onPort, call);
}

Outcome Scenario::runOnModel(const Call& call) const {
  ScriptedWorld world(script, accessories, layer);
  prepare(world);
  Model model(creation, *world.platform(), world.trace());
  world.trace().name(&model, "<self>");
  return runOn(model, *this, world, &Call::onModel, call);
}

Outcome Scenario::run(const Call& call) const {
  Outcome onPort = runOnPort(call);
  const Outcome onModel = runOnModel(call);
  const std::string difference =
      firstDifference("port", onPort.report(), "model", onModel.report());
  EXPECT_TRUE(difference.empty()) << difference << call.name << "\n" << describe(*this);
  const std::string late = overrun(*this, call, onPort);
  EXPECT_TRUE(late.empty()) << late << describe(*this);
  return onPort;
}

std::string describe(const Scenario& scenario) {
  std::ostringstream text;
  text << "emulation " << scenario.creation.emulation << ", time-out " << scenario.creation.timeout
       << ", " << (scenario.isOpen ? "open" : "not open") << ", logging "
       << (scenario.logging ? "on" : "off");
  const auto tell = [&text](const char* what, const auto& value) {
    if (value) {
      text << ", " << what << ' ' << *value;
    }
  };
  tell("port name", scenario.creation.portName);
  tell("settings", scenario.creation.portSettings);
  tell("system", scenario.systemVersion);
  for (const AccessoryIdentity& identity : scenario.accessories) {
    text << ", " << ScriptedAccessory(identity, nullptr).description() << " of "
         << identity.manufacturer.value_or("none") << " with " << identity.protocolStrings.size()
         << " protocols";
  }
  tell("end", scenario.endMillis);
  tell("hold", scenario.holdMillis);
  tell("data time-out", scenario.dataTimeoutSeconds);
  text << '\n' << describe(scenario.script);
  return text.str();
}

}  // namespace quordalvane::test
