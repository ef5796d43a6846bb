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

// The port measures its waits in whole seconds, and some of its operations wait twice.
constexpr auto timeForPauses = std::chrono::seconds(5);
constexpr auto timeForModule = std::chrono::seconds(10);

Bytes joined(const std::vector<Bytes>& reads) {
  Bytes all;
  for (const Bytes& read : reads) {
    all.insert(all.end(), read.begin(), read.end());
  }
  return all;
}

/// Returns the end of the status blocks at the beginning of `bytes`. The result is beyond the last
/// byte if the last block is incomplete.
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

/// In both emulations the first answer of the online test is a status block; in ESC/POS the answers
/// to the real-time queries follow.
bool areWholeAnswers(const Bytes& bytes, ZKEmulation emulation) {
  const std::size_t end = endOfBlocks(bytes);
  if (emulation != ZKEmulationESCPOS) {
    return end == bytes.size();
  }
  return end < bytes.size() && std::all_of(bytes.begin() + static_cast<std::ptrdiff_t>(end),
                                           bytes.end(), isRealTimeStatus);
}

/// Returns whether the bytes are exactly one reply with two DIP-switch settings.
bool areOneBank(const Bytes& bytes) {
  constexpr std::int32_t header = 4;
  constexpr std::int32_t settings = 2;
  std::int32_t location = 0;
  std::int32_t length = 0;
  return parseDipSwitchInfo(bytes.data(), static_cast<std::int32_t>(bytes.size()), &location,
                            &length) == 0 &&
         location == header && length == settings;
}

/// One query over a port. It records each read, has a time limit, and turns failures into
/// InquiryErrors.
class Question final : private TransferObserver {
 public:
  Question(const std::shared_ptr<Port>& port, std::vector<Bytes>& reads)
      : link_(port, neverCancelled), reads_(reads) {
    reads_.clear();
    link_.setListener(this);
  }

  template <typename Operation>
  auto ask(Operation operation, std::chrono::seconds extra = {}) {
    try {
      return link_.within(2 * link_.timeout() + timeForPauses + extra,
                          [&] { return operation(link_.port()); });
    } catch (const PortException&) {
      fail(InquiryCause::NoAnswer, "the link did not take the request");
    } catch (const PortLink::GivenUp&) {
      fail(InquiryCause::NoAnswer, "the exchange with the printer did not end in time");
    }
  }

  /// Throws an InquiryError with `cause` and `text`. If the link is lost, the error says this
  /// instead.
  [[noreturn]] void fail(InquiryCause cause, const std::string& text) {
    if (link_.isLost()) {
      throw InquiryError(InquiryCause::LinkLost, "the link to the printer was lost");
    }
    throw InquiryError(cause, text);
  }

  void requireEmulation() {
    if (link_.port().emulation() == ZKEmulationUnknown) {
      fail(InquiryCause::UnknownEmulation, "the printer cannot be asked without a known emulation");
    }
  }

  ProofKind askForProof() {
    link_.drain();
    FoundProof found;
    if (findProof(link_, escPos_, found)) {
      fail(InquiryCause::NoAnswer, "the link did not take the request");
    }
    return found.kind;
  }

  bool isLost() { return link_.isLost(); }

  /// Reads until the printer is silent after a complete answer, or until the time-out has passed.
  void hearOut() {
    constexpr std::chrono::milliseconds slice(100);  // the duration of a read that receives nothing
    Port& port = link_.port();
    for (auto waited = slice; waited <= link_.timeout() + slice; waited += slice) {
      const auto data = port.read(512);
      if (!data || (data->empty() && areWholeAnswers(joined(reads_), port.emulation()))) {
        return;
      }
    }
  }

  /// Returns whether the port may have mixed up the two answers of the online test. Before its
  /// second request the port drops the bytes of the first answer that have arrived. If bytes of the
  /// first answer arrive later, the port reads them as the second answer.
  bool isMixedUp(bool isAnswered) const {
    return link_.port().emulation() == ZKEmulationESCPOS
               ? isMixedUpInESCPOS(isAnswered)
               : isAnswered && !std::ranges::all_of(reads_, areWholeBlocks);
  }

 private:
  // The first answer is a status block. If bytes of this block arrive late, the port reads them as
  // the second answer. If the port accepts such bytes, the received bytes are not exactly whole
  // blocks and one byte for each query. If the port rejects such bytes, it reports that the printer
  // did not answer. But if the last read of the port received nothing, the port's time-out has
  // passed without a second answer, and nothing was mixed up.
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

// In ESC/POS the port accepts the first received bytes as the firmware text. These bytes may be a
// late status byte, or only the beginning of the text. A complete text begins with this head and
// ends with a zero byte.
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

/// If the two answers of the online test were mixed up, reads until the printer is silent and asks
/// again.
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
  } catch (const std::out_of_range&) {  // the reply was a single byte, which has no text
  }
  bool isOnline = true;
  const auto online = [&isOnline](Port& port) { return port.getOnlineStatus(&isOnline); };
  // The port sends the firmware query only to a printer that is on line. So the query may have
  // failed because the printer is off line.
  if (!question.isLost() && question.ask(online) && !isOnline) {
    throw InquiryError(InquiryCause::NotReady,
                       "the printer is off line; it reports its firmware only when it is on line");
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
  // The port decodes any seven bytes, so their form is checked here.
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
