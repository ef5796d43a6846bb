#include "simulator/VirtualPrinter.h"

#include <algorithm>
#include <utility>

#include "simulator/StatusReplies.h"

namespace quordalvane::simulator {
namespace {

unsigned dotsAcross(const PrinterState& state) {
  return state.paperMillimetres() == 58 ? narrowPaperDots : widePaperDots;
}

}  // namespace

VirtualPrinter::VirtualPrinter(PrinterState state)
    : state_(std::move(state)), printing_(dotsAcross(state_)) {
  followState(Instant{});
}

bool VirtualPrinter::setFlag(std::string_view name, bool value, Instant now) {
  const auto flag = flagNamed(name);
  if (!flag) {
    return false;
  }
  advance(now);
  state_.setFlag(*flag, value);
  followState(now);
  return true;
}

void VirtualPrinter::set(std::string_view key, std::string_view value, Instant now) {
  advance(now);
  state_.set(key, value);
  followState(now);
}

void VirtualPrinter::followState(Instant now) {
  queue_.run(!state_.flag(Flag::Offline), state_.bytesPerSecond, now);
  printUntil(now);
}

void VirtualPrinter::advance(Instant now) {
  const auto timeout = dataTimeoutDue();
  if (timeout && *timeout <= now) {
    printUntil(*timeout);
    dropHeld();
    dropping_ = true;
  }
  printUntil(now);
}

void VirtualPrinter::receive(std::span<const std::uint8_t> bytes, Instant now, bool vanish) {
  if (bytes.empty()) {
    return;
  }
  advance(now);
  lastReceived_ = now;
  reception_.take(bytes, vanish, [&](CommandKind kind, std::span<const std::uint8_t> piece) {
    if (actsOnReception(kind)) {
      obey(kind, piece, now);
    } else if (!dropping_) {
      hold(kind, piece, now);
    }
  });
  printUntil(now);
}

void VirtualPrinter::obey(CommandKind kind, std::span<const std::uint8_t> command, Instant now) {
  // A printer that takes no time over its data has printed what came before in the same packet.
  printUntil(now);
  switch (kind) {
    case CommandKind::StatusRequest:
      return reply(statusBlock(state_), now);
    case CommandKind::RealTimeStatus:
      return reply(realTimeStatus(state_, command[2]), now);
    case CommandKind::Firmware:
      return reply(firmwareReply(state_), now);
    case CommandKind::FirmwareEscPos:
      return reply(firmwareReplyEscPos(state_), now);
    case CommandKind::DipSwitches:
      return reply(dipSwitchReply(state_, command[3]), now);
    case CommandKind::CounterReset:
      state_.etbCounter = 0;
      return;
    case CommandKind::DataTimeout:
      dataTimeoutSeconds_ = command[5];
      return;
    case CommandKind::DataCancel:
      dropHeld();
      guarded_ = true;
      return;
    case CommandKind::DataCancelEnd:
      guarded_ = false;
      dropping_ = false;
      return;
    case CommandKind::PrepareStatus:  // a request that follows is answered in any case
    case CommandKind::Printing:
    case CommandKind::Etb:
    case CommandKind::ReportingEtb:
      return;
  }
}

void VirtualPrinter::hold(CommandKind kind, std::span<const std::uint8_t> bytes, Instant now) {
  const std::uint64_t begin = queuedEver_;
  queue_.push(bytes, now);
  queuedEver_ += bytes.size();
  if (kind == CommandKind::Etb) {
    marks_.push_back({Mark::Kind::Etb, begin, queuedEver_});
  } else if (kind == CommandKind::ReportingEtb) {
    marks_.push_back({Mark::Kind::ReportingEtb, begin, queuedEver_});
  }
}

void VirtualPrinter::printUntil(Instant now) {
  while (const auto taken = queue_.take(now)) {
    const bool isOfAnEtb = !marks_.empty() && marks_.front().begin <= takenEver_;
    ++takenEver_;
    if (!isOfAnEtb) {
      print(taken->byte);
    }
    passMarks(taken->at);
  }
}

void VirtualPrinter::print(std::uint8_t byte) {
  printing_.pass(byte);
  ++printedBytes_;
  if (state_.keepsPrinted) {
    printed_.push_back(byte);
  }
}

void VirtualPrinter::passMarks(Instant at) {
  while (!marks_.empty() && marks_.front().end <= takenEver_) {
    const Mark mark = marks_.front();
    marks_.pop_front();
    pass(mark, at);
  }
}

void VirtualPrinter::pass(const Mark& mark, Instant at) {
  if (mark.kind == Mark::Kind::EndOfConnection) {
    return endJob();
  }
  printing_.endJob();
  ++state_.etbCounter;
  if (mark.kind == Mark::Kind::ReportingEtb) {
    reply(etbReport(state_), at);
  }
}

// The host that wrote all this is gone.
void VirtualPrinter::endJob() {
  printing_.leaveUnfinishedCommand();
  if (!keepJob_) {
    return;
  }
  printing_.endJob();
  Paper paper = tearOff();
  if (!paper.items().empty()) {
    keepJob_(std::move(paper));
  }
}

void VirtualPrinter::dropHeld() {
  const bool endsJob = std::any_of(marks_.begin(), marks_.end(), [](const Mark& mark) {
    return mark.kind == Mark::Kind::EndOfConnection;
  });
  queue_.clear();
  takenEver_ = queuedEver_;
  marks_.clear();
  printing_.leaveUnfinishedCommand();
  printing_.endLine();
  if (endsJob) {
    endJob();
  }
}

Paper VirtualPrinter::tearOff() {
  printed_.clear();
  return printing_.tearOff();
}

std::optional<Instant> VirtualPrinter::dataTimeoutDue() const {
  if (!guarded_ || dropping_ || dataTimeoutSeconds_ == 0) {
    return std::nullopt;
  }
  return lastReceived_ + std::chrono::seconds(dataTimeoutSeconds_);
}

std::size_t VirtualPrinter::space() const {
  const std::size_t free = state_.bufferSize() - std::min(state_.bufferSize(), buffered());
  return free < readyAgain() ? 0 : free;
}

// A nearly full printer asks for more when there is room for a whole command, not for each byte: a
// command that is let in byte by byte is cut by whoever sends it.
std::size_t VirtualPrinter::readyAgain() const {
  return std::clamp<std::size_t>(state_.bufferSize() / 4, 1, 64);
}

std::optional<Instant> VirtualPrinter::nextEvent() const {
  std::optional<Instant> printed;
  if (queue_.size() > 0) {
    std::size_t count = queue_.size();
    if (!marks_.empty()) {
      count = marks_.front().end - takenEver_;
    }
    if (space() == 0) {
      count = std::min(count, buffered() + readyAgain() - state_.bufferSize());
    }
    printed = queue_.doneWith(count);
  }
  const auto timeout = dataTimeoutDue();
  if (printed && timeout) {
    return std::min(*printed, *timeout);
  }
  return printed ? printed : timeout;
}

std::uint64_t VirtualPrinter::connect(Sink sink) {
  endConnection();
  sink_ = std::move(sink);
  return ++connection_;
}

void VirtualPrinter::disconnect(std::uint64_t connection) {
  if (isConnection(connection)) {
    endConnection();
  }
}

void VirtualPrinter::endConnection() {
  sink_ = nullptr;
  reception_.restart();
  const bool bringsNothing = !marks_.empty() && marks_.back().begin == queuedEver_;
  if (!bringsNothing) {
    marks_.push_back({Mark::Kind::EndOfConnection, queuedEver_, queuedEver_});
  }
  passMarks({});
}

void VirtualPrinter::reply(std::span<const std::uint8_t> bytes, Instant at) {
  if (sink_) {
    sink_(bytes, at);
  }
}

}  // namespace quordalvane::simulator
