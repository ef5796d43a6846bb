#include "simulator/PrinterLink.h"

#include <algorithm>

namespace quordalvane::simulator {
namespace {

// A host that asks and never reads must not make the printer remember answers without end.
constexpr std::size_t kMostWaiting = 64 * 1024;

// In command mode nothing goes to the printer, so its buffer does not matter.
constexpr std::size_t kCommandModeSpace = 256;

}  // namespace

PrinterLink::PrinterLink(VirtualPrinter& printer, Instant now)
    : printer_(printer),
      connection_(printer.connect([this](std::span<const std::uint8_t> bytes, Instant) {
        // The module has one radio channel: while it answers commands itself, the printer is not
        // heard.
        if (!module_.inCommandMode())
          deliver(bytes);
      })),
      module_(
          printer.state().bluetoothAddress(),
          {[this](std::span<const std::uint8_t> bytes, Instant at) { printer_.receive(bytes, at); },
           [this](std::span<const std::uint8_t> bytes, Instant) { deliver(bytes); }},
          now),
      now_(now) {}

PrinterLink::~PrinterLink() {
  if (!dropped_)
    drop(now_);
}

std::size_t PrinterLink::space(Instant now) {
  settle(now);
  if (dropped_)
    return 0;
  if (module_.inCommandMode())
    return kCommandModeSpace;
  const std::size_t room = printer_.space();
  return room - std::min(room, module_.keptBack());
}

std::size_t PrinterLink::write(std::span<const std::uint8_t> bytes, Instant now) {
  const std::size_t count = std::min(bytes.size(), space(now));
  module_.receive(bytes.first(count), now);
  return count;
}

std::size_t PrinterLink::available(Instant now) {
  settle(now);
  return waiting_.size();
}

std::size_t PrinterLink::read(std::span<std::uint8_t> out, Instant now) {
  const std::size_t count = std::min(out.size(), available(now));
  const auto end = waiting_.begin() + static_cast<std::ptrdiff_t>(count);
  std::copy(waiting_.begin(), end, out.begin());
  waiting_.erase(waiting_.begin(), end);
  return count;
}

bool PrinterLink::connected(Instant now) {
  return !dropped(now) || !waiting_.empty();
}

bool PrinterLink::dropped(Instant now) {
  settle(now);
  return dropped_;
}

std::optional<Instant> PrinterLink::nextEvent(Instant now) {
  settle(now);
  if (dropped_)
    return std::nullopt;
  const auto own = nextOwnEvent();
  const auto printers = printer_.nextEvent();
  if (own && printers)
    return std::min(*own, *printers);
  return own ? own : printers;
}

// Works through everything that was due by `now`, in the order in which it was due.
void PrinterLink::settle(Instant now) {
  now_ = std::max(now_, now);
  while (!dropped_) {
    const auto due = nextOwnEvent();
    if (!due || *due > now)
      break;
    printer_.advance(*due);
    module_.advance(*due);
    if (module_.wantsLinkDropped())
      drop(*due);
  }
  printer_.advance(now);
  if (!dropped_ && !printer_.isConnection(connection_))
    drop(now);
}

std::optional<Instant> PrinterLink::nextOwnEvent() const {
  return module_.nextEvent();
}

void PrinterLink::deliver(std::span<const std::uint8_t> bytes) {
  if (waiting_.size() + bytes.size() <= kMostWaiting)
    waiting_.insert(waiting_.end(), bytes.begin(), bytes.end());
}

void PrinterLink::drop(Instant now) {
  if (printer_.isConnection(connection_))
    module_.release(now);
  printer_.disconnect(connection_);
  dropped_ = true;
}

}  // namespace quordalvane::simulator
