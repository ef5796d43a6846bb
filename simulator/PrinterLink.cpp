#include "simulator/PrinterLink.h"

#include <algorithm>
#include <limits>

namespace quordalvane::simulator {
namespace {

// The maximum count of bytes that wait until the host reads them. The limit is for a host that asks
// questions and never reads.
constexpr std::size_t mostWaiting = std::size_t{64} * 1024;

// The count of bytes that a write accepts in command mode. In this mode the Bluetooth module passes
// nothing to the printer, so the space in the printer's buffer does not matter.
constexpr std::size_t commandModeSpace = 256;

}  // namespace

PrinterLink::PrinterLink(VirtualPrinter& printer, Instant now, const Faults& faults)
    : printer_(printer),
      connection_(printer.connect([this](ByteView bytes, Instant at, ReplyKind kind) {
        // The Bluetooth module has one radio channel. While the module itself answers commands, the
        // printer's replies do not reach the host.
        if (!module_.inCommandMode()) {
          send(bytes, at, kind);
        }
      })),
      module_(printer.state().bluetoothAddress(),
              {[this](ByteView bytes, Instant at) { printer_.receive(bytes, at, printsNothing_); },
               [this](ByteView bytes, Instant at) { send(bytes, at, ReplyKind::Other); }},
              now),
      replies_(faults.seed.value_or(0)),
      now_(now) {
  for (const Fault& fault : faults.list) {
    befall(fault);
  }
}

PrinterLink::~PrinterLink() {
  if (!ended_) {
    drop(Ending::AtOnce);
  }
}

std::size_t PrinterLink::space(Instant now) {
  settle(now);
  std::size_t room = commandModeSpace;
  if (!module_.inCommandMode()) {
    const std::size_t free = printer_.space();
    room = free - std::min(free, module_.keptBack());
  }
  return std::min(room, mostTaken());
}

// Returns how many bytes the link itself accepts, regardless of the space in the printer.
std::size_t PrinterLink::mostTaken() const {
  if (ended_ || stalled()) {
    return 0;
  }
  const std::uint64_t most = std::numeric_limits<std::size_t>::max();
  return std::min(mostPerWrite_.value_or(most), bytesBeforeCut());
}

std::size_t PrinterLink::heardWithoutSpace(ByteView bytes) const {
  return std::min(mostTaken(), printer_.actingAtOnce(bytes));
}

std::size_t PrinterLink::write(ByteView bytes, Instant now) {
  std::size_t count = std::min(bytes.size(), space(now));
  if (count == 0) {
    count = heardWithoutSpace(bytes);
  }
  module_.receive(bytes.first(count), now);
  bytesIn_ += count;
  beginStalls();
  receiveReplies();
  cutIfReached(FaultKind::CutAfterIn);
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
  return ended_.has_value();
}

bool PrinterLink::wasReset(Instant now) {
  settle(now);
  return ended_ == Ending::Reset;
}

std::optional<Instant> PrinterLink::nextEvent(Instant now) {
  settle(now);
  if (ended_) {
    return std::nullopt;
  }
  return earlier(nextOwnEvent(), printer_.nextEvent());
}

// Executes everything that was due by `now`, in order of time.
void PrinterLink::settle(Instant now) {
  while (!ended_) {
    const Instant step = std::min(now, nextOwnEvent().value_or(now));
    now_ = std::max(now_, step);
    printer_.advance(now_);
    receiveReplies();
    module_.advance(now_);
    bringWhatIsComing();
    endStalls();
    if (!printer_.isConnection(connection_) || module_.wantsLinkDropped()) {
      drop(Ending::Drain);
    }
    if (step == now && nextOwnEvent().value_or(Instant::max()) > now) {
      return;
    }
  }
  printer_.advance(now);
}

std::optional<Instant> PrinterLink::nextOwnEvent() const {
  auto next = earlier(module_.nextEvent(), replies_.nextArrival());
  for (const Coming& coming : coming_) {
    next = earlier(next, coming.due);
  }
  for (const Stall& stall : stalls_) {
    next = earlier(next, stall.until);
  }
  return next;
}

void PrinterLink::send(ByteView bytes, Instant at, ReplyKind kind) {
  if (waiting_.size() + replies_.underWay() + bytes.size() <= mostWaiting) {
    replies_.send(bytes, at, kind);
  }
}

void PrinterLink::receiveReplies() {
  cutIfReached(FaultKind::CutAfterOut);
  while (!ended_) {
    const auto byte = replies_.arrive(now_);
    if (!byte) {
      return;
    }
    waiting_.push_back(*byte);
    ++bytesOut_;
    cutIfReached(FaultKind::CutAfterOut);
  }
}

void PrinterLink::drop(Ending ending) {
  if (printer_.isConnection(connection_)) {
    module_.release(now_);
  }
  printer_.disconnect(connection_);
  ended_ = ending;
  if (ending != Ending::Drain) {
    waiting_.clear();
  }
}

void PrinterLink::addFault(const Fault& fault, Instant now) {
  settle(now);
  befall(fault);
}

void PrinterLink::setSeed(std::uint64_t seed) {
  replies_.setSeed(seed);
}

void PrinterLink::befall(const Fault& fault) {
  switch (fault.kind) {
    case FaultKind::ShortWrites:
      mostPerWrite_ = std::min(mostPerWrite_.value_or(fault.count), fault.count);
      return;
    case FaultKind::NoSpace:
      stalls_.push_back({fault.count, fault.time, std::nullopt});
      return beginStalls();
    case FaultKind::CutAfterIn:
    case FaultKind::CutAfterOut:
      cuts_.push_back({fault.kind, fault.count, fault.ending});
      return cutIfReached(fault.kind);
    case FaultKind::Cut:
      if (!ended_) {
        drop(fault.ending);
      }
      return;
    case FaultKind::PrintsNothing:
      printsNothing_ = true;
      return;
    case FaultKind::At:
      coming_.push_back({now_ + fault.time, fault.key, fault.value});
      return;
    case FaultKind::LateReply:
    case FaultKind::SplitReply:
    case FaultKind::DuplicateReply:
    case FaultKind::DropReply:
    case FaultKind::CorruptReply:
    case FaultKind::StrayByte:
    case FaultKind::WrongId:
    case FaultKind::ForeignReply:
    case FaultKind::Silence:
      return replies_.add(fault);
  }
}

void PrinterLink::clearFaults(Instant now) {
  settle(now);
  replies_.clear();
  coming_.clear();
  stalls_.clear();
  cuts_.clear();
  mostPerWrite_.reset();
  printsNothing_ = false;
}

void PrinterLink::bringWhatIsComing() {
  const auto isDue = [this](const Coming& coming) { return coming.due <= now_; };
  const auto due = std::find_if(coming_.begin(), coming_.end(), isDue);
  if (ended_ || due == coming_.end()) {
    return;
  }
  const Coming brought = *due;
  coming_.erase(due);
  if (isFault(brought.key)) {
    befall(parseFault(brought.key, brought.value));
  } else {
    printer_.set(brought.key, brought.value, now_);
  }
}

void PrinterLink::beginStalls() {
  for (Stall& stall : stalls_) {
    if (!stall.until && bytesIn_ >= stall.afterBytes) {
      stall.until = now_ + stall.length;
    }
  }
}

void PrinterLink::endStalls() {
  std::erase_if(stalls_,
                [this](const Stall& stall) { return stall.until && *stall.until <= now_; });
}

bool PrinterLink::stalled() const {
  return std::any_of(stalls_.begin(), stalls_.end(),
                     [](const Stall& stall) { return stall.until.has_value(); });
}

// Returns how many bytes can arrive before a fault next drops or stalls the simulated connection.
// No write goes past the last of these bytes, so that the fault takes effect at the exact byte.
std::uint64_t PrinterLink::bytesBeforeCut() const {
  std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
  for (const Cut& cut : cuts_) {
    if (cut.kind == FaultKind::CutAfterIn) {
      most = std::min(most, cut.afterBytes - bytesIn_);
    }
  }
  for (const Stall& stall : stalls_) {
    most = std::min(most, stall.afterBytes - bytesIn_);
  }
  return most;
}

// If several faults drop the link after the same byte count, the first in the list takes effect.
void PrinterLink::cutIfReached(FaultKind afterWhat) {
  const std::uint64_t bytes = afterWhat == FaultKind::CutAfterIn ? bytesIn_ : bytesOut_;
  const auto reached = std::find_if(cuts_.begin(), cuts_.end(), [&](const Cut& cut) {
    return cut.kind == afterWhat && bytes >= cut.afterBytes;
  });
  if (!ended_ && reached != cuts_.end()) {
    drop(reached->ending);
  }
}

}  // namespace quordalvane::simulator
