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
  const bool isThere = flagNamed(name).has_value();
  if (isThere) {
    set(name, value ? "true" : "false", now);
  }
  return isThere;
}

void VirtualPrinter::set(std::string_view key, std::string_view value, Instant now) {
  advance(now);
  state_.set(key, value);
  followState(now);
}

void VirtualPrinter::followState(Instant now) {
  reception_.setDialect(state_.dialect);
  printing_.setDialect(state_.dialect);
  reception_.setLacked(state_.lacked);
  printing_.setLacked(state_.lacked);
  printing_.setCharacterSets(state_.characters);
  queue_.run(!state_.flag(Flag::Offline), state_.bytesPerSecond, now);
  printUntil(now);
  reportChange(now);
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

void VirtualPrinter::receive(ByteView bytes, Instant now, bool vanish) {
  if (bytes.empty()) {
    return;
  }
  advance(now);
  lastReceived_ = now;
  receivedEver_ += bytes.size();
  if (state_.keepsReceived) {
    jobBytes_.receive(bytes);
  }
  std::size_t unseen = reception_.undecided() + bytes.size();
  reception_.take(bytes, vanish, [&](MachineCommand command, ByteView piece) {
    unseen -= piece.size();
    if (actsOnReception(command)) {
      obey(command, piece, now);
    } else if (dropping_) {
      asides_.add(queuedEver_, piece.size());
    } else {
      hold(command, piece, now);
    }
  });
  asides_.add(queuedEver_, unseen - reception_.undecided());
  printUntil(now);
}

void VirtualPrinter::obey(MachineCommand command, ByteView bytes, Instant now) {
  // If the speed is unlimited, the bytes that precede this command in its packet are printed before
  // the command acts.
  printUntil(now);
  asides_.add(queuedEver_, bytes.size());
  show(Deed::Kind::Command, bytes);
  question_.assign(bytes.begin(), bytes.end());
  act(command, bytes, now);
  question_.clear();
}

// Adds the job's bytes before `position` to the record of the paper. To be called before the paper
// is torn off.
void VirtualPrinter::recordReceived(std::uint64_t position) {
  jobBytes_.pass(position);
  auto [bytes, count] = jobBytes_.take();
  printing_.record().setReceived(std::move(bytes), count);
}

void VirtualPrinter::show(Deed::Kind kind, ByteView bytes, ReplyKind reply) const {
  if (watch_) {
    watch_({kind, bytes, reply});
  }
}

void VirtualPrinter::act(MachineCommand command, ByteView bytes, Instant now) {
  switch (command) {
    case MachineCommand::CounterReset:
      state_.etbCounter = 0;
      return;
    case MachineCommand::DataTimeout:
      dataTimeoutSeconds_ = bytes[5];
      return;
    case MachineCommand::DataCancel:
      dropHeld();
      guarded_ = true;
      return;
    case MachineCommand::DataCancelEnd:
      guarded_ = false;
      dropping_ = false;
      return;
    case MachineCommand::ClearBuffer:
      dropHeld();
      return reply(clearedReport(), now, ReplyKind::Cleared);
    case MachineCommand::Recover:
      return recover(bytes[2], now);
    case MachineCommand::UnaskedStatus:
      // A parameter other than 0 switches all reports on; on real printers, it chooses some of the
      // reports.
      if (bytes[2] == 0) {
        return unasked_.switchOff();
      }
      unasked_.switchOn();
      return reportChange(now);
    default:
      return answer(command, bytes, now);
  }
}

void VirtualPrinter::recover(std::uint8_t how, Instant now) {
  constexpr std::uint8_t withoutTheRest = 2;
  if (how == withoutTheRest) {
    dropHeld();
  }
  for (const Flag flag : {Flag::CutterError, Flag::MechError, Flag::JamError}) {
    state_.setFlag(flag, false);
  }
  followState(now);
}

void VirtualPrinter::answer(MachineCommand command, ByteView bytes, Instant now) {
  switch (command) {
    case MachineCommand::StatusRequest:
      return reply(statusBlock(state_), now);
    case MachineCommand::RealTimeStatus:
      return reply(realTimeStatus(state_, bytes[2]), now);
    case MachineCommand::Firmware:
      return reply(firmwareReply(state_), now);
    case MachineCommand::Identify:
      return reply(identityReply(state_, bytes[2]), now);
    case MachineCommand::DipSwitches:
      return reply(dipSwitchReply(state_, bytes[3]), now);
    default:  // `PrepareStatus`: this printer answers status requests even without it
      return;
  }
}

void VirtualPrinter::reportChange(Instant now) {
  reply(unasked_.change(state_), now, ReplyKind::Unasked);
}

// If flow control is switched off, a paused host is asked to continue.
void VirtualPrinter::controlFlow(Instant at) {
  if (!state_.flowControl && !flow_.isPaused()) {
    return;
  }
  const std::size_t free = state_.flowControl ? freeBytes() : state_.bufferSize();
  if (const auto sign = flow_.follow(free, state_.bufferSize())) {
    reply({&*sign, 1}, at);
  }
}

void VirtualPrinter::hold(MachineCommand command, ByteView bytes, Instant now) {
  const std::uint64_t begin = queuedEver_;
  queue_.push(bytes, now);
  queuedEver_ += bytes.size();
  if (actsInTurn(command)) {
    marks_.push_back(
        {command, Bytes(bytes.begin(), bytes.end()), begin, queuedEver_, receivedEver_});
  }
}

void VirtualPrinter::printUntil(Instant now) {
  while (const auto taken = queue_.take(now)) {
    const bool isOfAMark = !marks_.empty() && marks_.front().begin <= takenEver_;
    asides_.pass(takenEver_);
    ++takenEver_;
    if (!isOfAMark) {
      print(taken->byte);
    }
    passMarks(taken->at);
    controlFlow(taken->at);
  }
  controlFlow(now);
}

void VirtualPrinter::print(std::uint8_t byte) {
  if (printing_.pass(byte, takenEver_ - 1 + asides_.passed() - jobBegin_)) {
    show(Deed::Kind::Command, printing_.command());
  }
  ++printedBytes_;
  if (state_.keepsPrinted) {
    printed_.push_back(byte);
  }
  do {
    if (printing_.paper().isTooLong()) {
      tearOffHeavyPaper();
    }
  } while (printing_.goOn());
}

void VirtualPrinter::tearOffHeavyPaper() {
  recordReceived(takenEver_ + asides_.passed());
  Paper paper = printing_.tearOffFinishedLines();
  paper.setGoesOn();
  if (keepJob_) {
    keepJob_(std::move(paper));
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
  if (!mark.command) {
    return endJob(mark.received);
  }
  question_ = mark.bytes;
  show(Deed::Kind::Command, mark.bytes);
  answerInTurn(mark, at);
  question_.clear();
}

void VirtualPrinter::answerInTurn(const Mark& mark, Instant at) {
  switch (*mark.command) {
    case MachineCommand::ReportingEtb:
      countEtb();
      return reply(etbReport(state_), at, ReplyKind::Block);
    case MachineCommand::ReturnProcessId:
      return reply(processIdReport(mark.bytes), at, ReplyKind::ProcessId);
    case MachineCommand::InOrderStatus:
      return reply(inOrderStatus(state_, mark.bytes), at, ReplyKind::InOrder);
    case MachineCommand::AskSymbolSize:
      return reply(printing_.sizeReply(mark.bytes), at);
    case MachineCommand::AskGraphics:
      return reply(printing_.graphicsReply(mark.bytes), at);
    case MachineCommand::AskSetting:
      return reply(settingReply(mark.bytes), at);
    default:
      return countEtb();
  }
}

void VirtualPrinter::countEtb() {
  printing_.endJob();
  ++state_.etbCounter;
}

// Called after a host has disconnected and all its data have been printed.
void VirtualPrinter::endJob(std::uint64_t received) {
  printing_.leaveUnfinishedCommand();
  if (!keepJob_) {
    return;
  }
  printing_.endJob();
  jobBytes_.pass(received);
  Paper paper = tearOff();
  jobBegin_ = received;
  if (!paper.items().empty() || !paper.record().isEmpty()) {
    keepJob_(std::move(paper));
  }
}

void VirtualPrinter::dropHeld() {
  const bool endsJob =
      std::any_of(marks_.begin(), marks_.end(), [](const Mark& mark) { return !mark.command; });
  queue_.clear();
  takenEver_ = queuedEver_;
  asides_.pass(takenEver_);
  marks_.clear();
  printing_.leaveUnfinishedCommand();
  printing_.endLine();
  if (endsJob) {
    endJob(receivedEver_);
  }
}

Paper VirtualPrinter::tearOff() {
  printed_.clear();
  jobBegin_ = takenEver_ + asides_.passed();
  recordReceived(jobBegin_);
  return printing_.tearOff();
}

std::optional<Instant> VirtualPrinter::dataTimeoutDue() const {
  if (!guarded_ || dropping_ || dataTimeoutSeconds_ == 0) {
    return std::nullopt;
  }
  return lastReceived_ + std::chrono::seconds(dataTimeoutSeconds_);
}

std::size_t VirtualPrinter::space() const {
  const std::size_t free = freeBytes();
  return free < readyAgain() ? 0 : free;
}

std::size_t VirtualPrinter::freeBytes() const {
  return state_.bufferSize() - std::min(state_.bufferSize(), buffered());
}

// A nearly full printer accepts nothing until it has room for a whole command: if it accepted
// single bytes, the host would split a command.
std::size_t VirtualPrinter::readyAgain() const {
  return std::clamp<std::size_t>(state_.bufferSize() / 4, 1, 64);
}

// Returns how many bytes the printer must print until `bytes` bytes of its buffer are free. `bytes`
// must be greater than the number of bytes that are free now.
std::size_t VirtualPrinter::untilFree(std::size_t bytes) const {
  return buffered() + bytes - state_.bufferSize();
}

std::optional<Instant> VirtualPrinter::nextEvent() const {
  std::optional<Instant> printed;
  if (queue_.size() > 0) {
    std::size_t count = queue_.size();
    if (!marks_.empty()) {
      count = marks_.front().end - takenEver_;
    }
    if (space() == 0) {
      count = std::min(count, untilFree(readyAgain()));
    }
    if (flow_.isPaused()) {
      count = std::min(count, untilFree(FlowControl::spaceAgain(state_.bufferSize())));
    }
    printed = queue_.doneWith(count);
  }
  return earlier(printed, dataTimeoutDue());
}

std::uint64_t VirtualPrinter::connect(Sink sink) {
  endConnection();
  flow_.restart();
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
  unasked_.switchOff();
  asides_.add(queuedEver_, reception_.undecided());
  reception_.restart();
  const bool bringsNothing = !marks_.empty() && marks_.back().begin == queuedEver_;
  if (!bringsNothing) {
    marks_.push_back({std::nullopt, {}, queuedEver_, queuedEver_, receivedEver_});
  }
  passMarks({});
}

void VirtualPrinter::reply(ByteView bytes, Instant at, ReplyKind kind) {
  if (!question_.empty() && !bytes.empty()) {
    printing_.record().noteQuestion(question_, bytes);
  }
  if (sink_ && !bytes.empty()) {
    show(Deed::Kind::Answer, bytes, kind);
    sink_(bytes, at, kind);
  }
}

}  // namespace quordalvane::simulator
