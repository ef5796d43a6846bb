#include "job/PrinterInquiry.h"

#include <algorithm>
#include <atomic>
#include <cstddef>

#include "iphone-IOPort/PortC.h"
#include "job/EscPosAnswers.h"
#include "job/PortLink.h"
#include "job/ProofSearch.h"
#include "job/StatusBlock.h"

namespace quordalvane {
namespace {

using Port = ExternalAccessoryPort;
using Bytes = std::vector<std::uint8_t>;

constexpr std::atomic<bool> neverCancelled = false;

// The port's waits count in whole seconds, and some of its operations have two of them.
constexpr auto timeForPauses = std::chrono::seconds(5);
constexpr auto timeForModule = std::chrono::seconds(10);

Bytes joined(const std::vector<Bytes>& reads) {
  Bytes all;
  for (const Bytes& read : reads) {
    all.insert(all.end(), read.begin(), read.end());
  }
  return all;
}

/// The end of the status blocks that the bytes begin with; after the last byte if that block is not
/// whole.
std::size_t endOfBlocks(const Bytes& bytes) {
  std::size_t next = 0;
  while (next < bytes.size() && startsStatusBlock(bytes[next])) {
    next += static_cast<std::size_t>(CalculateStatusLength(bytes[next]));
  }
  return next;
}

bool areWholeBlocks(const Bytes& bytes) {
  return endOfBlocks(bytes) == bytes.size();
}

bool isRealTimeStatus(std::uint8_t byte) {
  return (byte & escPosFixedMask) == escPosFixedBits;
}

/// In both emulations a block answers the online test's first question; in ESC/POS the answers to
/// its queries follow.
bool areWholeAnswers(const Bytes& bytes, ZKEmulation emulation) {
  const std::size_t end = endOfBlocks(bytes);
  if (emulation != ZKEmulationESCPOS) {
    return end == bytes.size();
  }
  return end < bytes.size() && std::all_of(bytes.begin() + static_cast<std::ptrdiff_t>(end),
                                           bytes.end(), isRealTimeStatus);
}

/// Two settings, in the form in which a printer reports a bank of its DIP switches, and nothing
/// else.
bool areOneBank(const Bytes& bytes) {
  constexpr std::int32_t header = 4;
  constexpr std::int32_t settings = 2;
  std::int32_t location = 0;
  std::int32_t length = 0;
  return parseDipSwitchInfo(bytes.data(), static_cast<std::int32_t>(bytes.size()), &location,
                            &length) == 0 &&
         location == header && length == settings;
}

/// One question over a port: hears each read, has a limit, and turns failures into errors.
class Question final : private TransferObserver {
 public:
  Question(const std::shared_ptr<Port>& port, std::vector<Bytes>& reads)
      : link_(port, neverCancelled), reads_(reads) {
    reads_.clear();
    link_.setListener(this);
  }

  /// Calls `operation` on the port and returns its result.
  template <typename Operation>
  auto ask(Operation operation, std::chrono::seconds extra = {}) {
    try {
      return link_.within(2 * link_.timeout() + timeForPauses + extra,
                          [&] { return operation(link_.port()); });
    } catch (const PortException&) {
      fail(InquiryCause::NoAnswer, "the link did not take the request");
    } catch (const PortLink::TimeUp&) {
      fail(InquiryCause::NoAnswer, "the exchange with the printer did not end in time");
    }
  }

  /// Throws `cause`, or that the link is lost if it is.
  [[noreturn]] void fail(InquiryCause cause, const std::string& text) {
    if (link_.isLost()) {
      throw InquiryError(InquiryCause::LinkLost, "the link to the printer was lost");
    }
    throw InquiryError(cause, text);
  }

  /// Throws unless the port's emulation is known.
  void requireEmulation() {
    if (link_.port().emulation() == ZKEmulationUnknown) {
      fail(InquiryCause::UnknownEmulation, "the printer cannot be asked without a known emulation");
    }
  }

  /// Asks a printer in ESC/POS for the proof that it gives.
  ProofKind askForProof() {
    link_.drain();
    FoundProof found;
    if (findProof(link_, escPos_, found)) {
      fail(InquiryCause::NoAnswer, "the link did not take the request");
    }
    return found.kind;
  }

  bool isLost() { return link_.isLost(); }

  /// Waits until the printer falls silent after a whole answer. One that never falls silent is not
  /// waited for.
  void hearOut() {
    constexpr std::chrono::milliseconds slice(100);  // of a read that nothing arrives for
    Port& port = link_.port();
    for (auto waited = slice; waited <= link_.timeout() + slice; waited += slice) {
      const auto data = port.read(512);
      if (!data || (data->empty() && areWholeAnswers(joined(reads_), port.emulation()))) {
        return;
      }
    }
  }

  /// Whether the port may have taken a part of the first answer of the online test for the second:
  /// it throws away the bytes of the first that have arrived when it asks again, but a late one, or
  /// one in pieces, arrives after that.
  bool isMixedUp(bool isAnswered) const {
    return link_.port().emulation() == ZKEmulationESCPOS
               ? isMixedUpInESCPOS(isAnswered)
               : isAnswered && !std::ranges::all_of(reads_, areWholeBlocks);
  }

 private:
  // The port refuses most parts of a block here. If it heard nothing at last, it gave up and has
  // mixed up nothing.
  bool isMixedUpInESCPOS(bool isAnswered) const {
    constexpr std::size_t queries = 3;
    const Bytes bytes = joined(reads_);
    return isAnswered ? endOfBlocks(bytes) + queries != bytes.size()
                      : !reads_.empty() && !reads_.back().empty();
  }

  void bytesWritten(ByteView /*bytes*/) override {}
  void bytesRead(ByteView bytes) override {
    reads_.emplace_back(bytes.begin(), bytes.end());
    escPos_.feed(bytes);
  }

  PortLink link_;
  EscPosAnswers escPos_;
  std::vector<Bytes>& reads_;
};

QuorPrinterStatus_2 statusFor(Question& question, std::uint32_t level, ZKEmulation emulation) {
  QuorPrinterStatus_2 status = {};
  if (!question.ask([&](Port& port) { return port.getParsedStatus(&status, level); })) {
    question.fail(InquiryCause::NoAnswer, "the printer did not answer");
  }
  if (emulation == ZKEmulationQuorLine && !isStatusBlock(status)) {
    question.fail(InquiryCause::NotUnderstood,
                  "the printer's answer is not a status of this emulation");
  }
  return status;
}

// In ESC/POS the port takes the first bytes that arrive for the text: a late status byte, or the
// beginning of the text alone. A whole text has this head and ends in a zero.
bool isWholeText(const Bytes& reply) {
  constexpr std::uint8_t head = 0x5f;
  return !reply.empty() && reply.front() == head && reply.back() == 0;
}

}  // namespace

QuorPrinterStatus_2 PrinterInquiry::status(std::uint32_t level) {
  Question question(port_, reads_);
  question.requireEmulation();
  return statusFor(question, level, port_->emulation());
}

/// If the two answers of the online test were mixed up, the inquiry reads until the printer is
/// silent and asks again.
bool PrinterInquiry::isOnline() {
  Question question(port_, reads_);
  question.requireEmulation();
  bool isOnline = false;
  const bool isAnswered = question.ask([&](Port& port) { return port.getOnlineStatus(&isOnline); });
  if (question.isMixedUp(isAnswered)) {
    question.hearOut();
    return statusFor(question, 2, port_->emulation()).offline == 0;
  }
  if (!isAnswered) {
    question.fail(InquiryCause::NoAnswer, "the printer did not answer");
  }
  return isOnline;
}

std::string PrinterInquiry::firmware() {
  Question question(port_, reads_);
  question.requireEmulation();
  try {
    if (question.ask([](Port& port) { return port.retrieveFirmwareInformation(); }) &&
        (port_->emulation() != ZKEmulationESCPOS || isWholeText(reads_.back()))) {
      return port_->firmwareInformation().value_or("");
    }
  } catch (const std::out_of_range&) {  // a single byte, which has no text
  }
  bool isOnline = true;
  const auto online = [&isOnline](Port& port) { return port.getOnlineStatus(&isOnline); };
  // A port asks an on-line printer only.
  if (!question.isLost() && question.ask(online) && !isOnline) {
    throw InquiryError(InquiryCause::NotReady,
                       "the printer is off line, and is not asked for its firmware then");
  }
  question.fail(InquiryCause::NoAnswer, "the printer did not report its firmware");
}

std::array<std::vector<std::uint8_t>, 2> PrinterInquiry::dipSwitches() {
  Question question(port_, reads_);
  std::array<Bytes, 2> banks;
  for (std::size_t place = 0; place < banks.size(); ++place) {
    const auto number = static_cast<std::uint8_t>(place + 1);
    auto bank = question.ask([&](Port& port) { return port.retrieveDipSwitchInformation(number); });
    if (!bank) {
      question.fail(InquiryCause::NoAnswer, "the printer did not report its DIP switches");
    }
    banks.at(place) = std::move(*bank);
  }
  return banks;
}

std::chrono::milliseconds PrinterInquiry::buttonSecurityTimeout() {
  Question question(port_, reads_);
  const std::int64_t milliseconds =
      question.ask([](Port& port) { return port.retrieveButtonSecurityTimeout(); });
  if (milliseconds < 0) {
    question.fail(InquiryCause::NoAnswer,
                  "the printer did not report its button-security time-out");
  }
  // The port decodes whatever seven bytes arrive.
  if (!areOneBank(joined(reads_))) {
    question.fail(InquiryCause::NotUnderstood,
                  "the answer is not a printer's report of its button-security time-out");
  }
  return std::chrono::milliseconds(milliseconds);
}

ProofKind PrinterInquiry::proof() {
  Question question(port_, reads_);
  question.requireEmulation();
  if (port_->emulation() == ZKEmulationESCPOS) {
    return question.ask([&](Port&) { return question.askForProof(); });
  }
  const auto status = statusFor(question, 2, port_->emulation());
  return hasCounter(status) ? ProofKind::Block : ProofKind::None;
}

void PrinterInquiry::dropAll() {
  Question question(port_, reads_);
  if (!question.ask([](Port& port) { return port.startDataCancel(); })) {
    question.fail(InquiryCause::NoAnswer, "the link did not take the whole command");
  }
}

void PrinterInquiry::disconnect() {
  Question question(port_, reads_);
  try {
    if (!question.ask([](Port& port) { return port.disconnect(); }, timeForModule)) {
      question.fail(InquiryCause::NoAnswer, "the Bluetooth module did not drop the link");
    }
  } catch (const std::out_of_range&) {
    question.fail(InquiryCause::NotUnderstood, "the Bluetooth module answered without its address");
  }
}

std::vector<std::uint8_t> PrinterInquiry::heard() const {
  return joined(reads_);
}

}  // namespace quordalvane
