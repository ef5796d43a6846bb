#include "tests/simulation/World.h"

#include <algorithm>
#include <span>
#include <utility>

#include "simulator/PrinterBuilder.h"
#include "tests/support/FaultyPlatform.h"
#include "tests/support/Replay.h"
#include "tests/support/TracingPlatform.h"

namespace quordalvane::simulation {
namespace {

simulator::PrinterBuilder printerOf(const Case& given) {
  simulator::PrinterBuilder builder;
  builder.keepPrinted();
  for (const auto& [key, value] : given.printer) {
    builder.set(key, value);
  }
  for (const auto& [key, value] : given.faults) {
    builder.fault(key, value);
  }
  return builder;
}

std::shared_ptr<test::FaultyAccessory> accessoryOf(const Case& given, Clock& clock) {
  const auto printer = printerOf(given);
  return std::make_shared<test::FaultyAccessory>(
      AccessoryIdentity{}, std::make_unique<simulator::VirtualPrinter>(printer.state()), clock,
      printer.faults());
}

PrintResult printOn(const std::shared_ptr<ExternalAccessoryPort>& port, const ByteBuffer& data,
                    std::uint32_t endTimeoutMillis, ProofKind proof) {
  port->setEndCheckedBlockTimeoutMillis(endTimeoutMillis);
  port->open();
  PrintResult result = PrintJob(port, {.proof = proof}).run(data);
  port->close();
  return result;
}

}  // namespace

/// Counts the written bytes if they are the next bytes of the job. A command that the port itself
/// adds is not counted, unless the next bytes of the job are the same command.
std::int64_t Witness::write(NSOutputStream& next, const std::uint8_t* buffer, std::size_t count) {
  const auto rest = std::span(data_).subspan(taken_);
  const bool isOfTheJob = count <= rest.size() && std::equal(buffer, buffer + count, rest.begin());
  const std::int64_t result = next.write(buffer, count);
  sawFailure_ = sawFailure_ || result < 0;
  taken_ += isOfTheJob && result > 0 ? static_cast<std::size_t>(result) : 0;
  return result;
}

World::World(const Case& given)
    : trace_(test::replayedCase() ? std::make_unique<test::Trace>() : nullptr),
      given_(given),
      platform_(std::make_shared<test::VirtualPlatform>()),
      accessory_(accessoryOf(given, platform_->clock())),
      witness_(std::make_shared<Witness>(given.data)) {
  platform_->attach(accessory_);
  for (const Turn& turn : given.turns) {
    platform_->virtualClock().at(turn.after, [this, turn] { set(turn.flag, turn.value); });
  }
  const auto plan = std::make_shared<test::FaultPlan>(witness_, 1, true);
  plan->arm();
  std::shared_ptr<Platform> watched = std::make_shared<test::FaultyPlatform>(platform_, plan);
  if (trace_) {
    watched = std::make_shared<test::TracingPlatform>(std::move(watched), *trace_);
  }
  port_ = newPort(given.timeoutMillis, std::move(watched));
}

World::Port World::newPort(std::uint32_t timeoutMillis, std::shared_ptr<Platform> platform) const {
  return ExternalAccessoryPort::initWithPortName("BT:", given_.portSettings, timeoutMillis,
                                                 given_.emulation, std::move(platform));
}

PrintResult World::printJob() {
  return printOn(port_, given_.data, given_.endTimeoutMillis, given_.proof);
}

void World::openPort() {
  port_->setEndCheckedBlockTimeoutMillis(given_.endTimeoutMillis);
  port_->open();
}

PrintResult World::printOnOpenPort(const ByteBuffer& data) {
  return PrintJob(port_, {.proof = given_.proof}).run(data);
}

void World::printForAnotherHost(const ByteBuffer& data) {
  printOn(newPort(given_.timeoutMillis, platform_), data, 0, ProofKind::None);
}

PrintResult World::printAgain(const ByteBuffer& data) {
  constexpr std::uint32_t ample = 10000;
  const bool isPatient = given_.timeoutMillis >= 2000;
  return printOn(isPatient ? port_ : newPort(ample, platform_), data, ample, given_.proof);
}

void World::recover() {
  accessory_->setFaults({});
  // After these 10 s, the case changes no flag any more.
  platform_->clock().usleep(10000000);
  for (const Turn& turn : given_.turns) {
    set(turn.flag, false);
  }
  platform_->clock().usleep(600000000);
}

ByteBuffer World::paper() {
  ByteBuffer bytes;
  accessory_->withPrinter(
      [&bytes](simulator::VirtualPrinter& printer, auto) { bytes = printer.printed(); });
  return bytes;
}

std::string World::trace() {
  return trace_ ? test::whole(trace_->lines()) : "";
}

void World::set(const std::string& flag, bool value) {
  accessory_->withPrinter(
      [&](simulator::VirtualPrinter& printer, auto now) { printer.setFlag(flag, value, now); });
}

}  // namespace quordalvane::simulation
