#include "job/PrintJob.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "iphone-IOPort/PortC.h"
#include "job/Advice.h"
#include "job/PrintData.h"
#include "job/StatusText.h"
#include "job/Words.h"

namespace quordalvane {
namespace {

constexpr std::uint32_t statusLevel = 2;

// A port copies what it is given once more for each look at the link. Pieces of at most this size
// keep that cheap for jobs of many megabytes, and pieces of twice what the link took last on slow
// links. Smaller ones cost more in system calls than they save in copies.
constexpr std::size_t largestPiece = std::size_t{128} * 1024;
constexpr std::size_t smallestPiece = 256;

// A cancelled job's last word must be out within this time: people wait for it.
constexpr auto cancelLimit = std::chrono::milliseconds(500);
constexpr std::uint8_t dataCancel[] = {0x1b, 0x1d, 0x03, 0x03, 0x00, 0x00};
constexpr std::uint8_t dataCancelEnd[] = {0x1b, 0x1d, 0x03, 0x04, 0x00, 0x00};

// How long a port may go on once the printer's report has been seen.
constexpr auto timeToEnd = std::chrono::seconds(2);

// Between looks at a link that has nothing and says so at once.
constexpr std::uint64_t lookPauseMicroseconds = 10000;

// The signs by which a block is confirmed.
constexpr std::uint8_t countOfTwoMarks = 2;
constexpr std::uint8_t countOfOneMark = 1;
constexpr std::uint32_t lengthWithCounter = 7;
constexpr std::uint8_t offlineBit = 0x08;

bool hasCounter(const QuorPrinterStatus_2& status) {
  return status.rawLength >= lengthWithCounter && (status.raw[0] & 0xc0) == 0x80;
}

std::string whyOwed(const OwedAnswers& answers) {
  if (!answers.last().empty()) {
    return "the printer has not answered all that it was asked";
  }
  return answers.isAnyOdd() ? "the printer's answer is not a status of this emulation"
                            : "the printer does not answer";
}

/// Lets a job see the bytes of its port as long as it lasts.
class Observation {
 public:
  Observation(ExternalAccessoryPort& port, TransferObserver& observer) : port_(port) {
    port_.setTransferObserver(&observer);
  }
  ~Observation() { port_.setTransferObserver(nullptr); }
  Observation(const Observation&) = delete;
  Observation& operator=(const Observation&) = delete;

 private:
  ExternalAccessoryPort& port_;
};

}  // namespace

PrintJob::PrintJob(std::shared_ptr<ExternalAccessoryPort> port, Options options)
    : port_(std::move(port)), options_(std::move(options)), answers_(port_->emulation()) {}

PrintResult PrintJob::run(std::span<const std::uint8_t> data) {
  result_.bytesTotal = data.size();
  const Observation observation(*port_, *this);
  try {
    print(data);
  } catch (const Cancelled&) {
    finishCancelled(data);
  }
  result_.advice = adviceFor(result_);
  return result_;
}

void PrintJob::bytesWritten(std::span<const std::uint8_t> bytes) {
  if (stage_ == PrintStage::Begin) {
    answers_.written(bytes);
  }
  if (accepted_ != nullptr) {
    *accepted_ += bytes.size();
  }
  stopIfCancelled();
}

void PrintJob::bytesRead(std::span<const std::uint8_t> bytes) {
  if (stage_ == PrintStage::Begin) {
    answers_.read(bytes);
  }
  report_.feed(bytes);
  stopIfCancelled();
  stopIfReported();
}

void PrintJob::stopIfCancelled() const {
  if (cancelled_ && !isFinishing_) {
    throw Cancelled();
  }
}

/// A port counts only a report that comes in one piece, and would wait for another to its time-out.
void PrintJob::stopIfReported() {
  if (!awaitsReport_ || report_.lastCount() != countOfOneMark) {
    return;
  }
  const auto now = port_->platform().clock().monotonic();
  reportedAt_ = reportedAt_.value_or(now);
  if (now - *reportedAt_ > timeToEnd) {
    awaitsReport_ = false;
    throw Reported();
  }
}

void PrintJob::print(std::span<const std::uint8_t> data) {
  stopIfCancelled();
  if (options_.checked && !(begin() && synchronise())) {
    leaveBlock();
    return;
  }
  enter(PrintStage::Data);
  result_.status.reset();  // what the printer was before says nothing of what becomes of the data
  if (!move(data, result_.bytesAccepted)) {
    return;
  }
  if (options_.checked) {
    end(data);
  } else {
    stop(PrintObstacle::NoProof,
         data.empty() ? "there was nothing to send"
                      : "sent without a checked block: nothing proves that it was printed");
  }
}

bool PrintJob::begin() {
  enter(PrintStage::Begin);
  bool exchanged = false;
  try {
    exchanged = port_->beginCheckedBlock(&status_, statusLevel, &result_.resultCode);
  } catch (const PortException& exception) {
    return stopForLostExchange(exception.reason());
  }
  if (status_.rawLength > 0) {
    result_.status = status_;
  }
  if (result_.resultCode == ZKQuorIOResultCodePaperPresentError) {
    return stop(PrintObstacle::PrinterNotReady, "paper was left in the printer's exit");
  }
  if (!exchanged) {
    return stopForLostExchange("the printer gave no status, or did not reset its counter, within " +
                               inSeconds(port_->timeoutMillis()));
  }
  if (status_.offline != 0) {
    return stop(PrintObstacle::PrinterNotReady, whyOffline(status_));
  }
  if (port_->emulation() == ZKEmulationESCPOS && !result_.status) {
    return stopForLostExchange("the printer does not answer");
  }
  return true;
}

/// One exchange behind the block's data cancel, once all earlier questions are answered. Its answer
/// comes after everything that the printer had to say of earlier jobs, and in line mode shows that
/// none of them was counted since: every sign from here on is this job's.
bool PrintJob::synchronise() {
  if (port_->emulation() == ZKEmulationUnknown) {
    return true;
  }
  const bool isLineMode = port_->emulation() == ZKEmulationQuorLine;
  drainInput();
  if (!awaitAnswers()) {
    return false;
  }
  answers_.forgetSurplus();
  const std::uint8_t realTimeStatusRequest[] = {0x10, 0x04, 0x01};
  std::uint64_t requestBytes = 0;
  return move(isLineMode ? std::span<const std::uint8_t>(escAckSoh) : realTimeStatusRequest,
              requestBytes) &&
         awaitAnswers() && (isLineMode ? isReadyInLineMode() : isReadyInESCPOS());
}

/// Reads until the printer owes no answer. False at the time-out or when the link is lost.
bool PrintJob::awaitAnswers() {
  Clock& clock = port_->platform().clock();
  const auto limit = std::chrono::milliseconds(std::max(port_->timeoutMillis(), 1000U));
  const auto start = clock.monotonic();
  while (answers_.isAnyOwed()) {
    if (!port_->read(128) || clock.monotonic() - start > limit) {
      return stopForLostExchange(whyOwed(answers_));
    }
    if (answers_.isAnyOwed()) {
      clock.usleep(lookPauseMicroseconds);
    }
  }
  return true;
}

bool PrintJob::isReadyInLineMode() {
  const auto& block = answers_.last();
  status_.rawLength = static_cast<std::uint32_t>(block.size());
  std::copy(block.begin(), block.end(), status_.raw);
  BuildParsedStatus(&status_);
  result_.status = status_;
  if (!hasCounter(status_)) {
    return stop(PrintObstacle::ExchangeFailed,
                "the printer's status of " + grouped(block.size()) +
                    " bytes holds no counter, without which no job can be confirmed");
  }
  if (status_.offline != 0) {
    return stop(PrintObstacle::PrinterNotReady, whyOffline(status_));
  }
  if (status_.etbCounter != 0) {
    return stop(PrintObstacle::ExchangeFailed,
                "the end of an earlier job was counted for this one before it began");
  }
  return true;
}

bool PrintJob::isReadyInESCPOS() {
  if ((answers_.last().front() & offlineBit) != 0) {
    return stop(PrintObstacle::PrinterNotReady, "off line");
  }
  return true;
}

/// Ends the guarded stretch of a block that is not gone on with. A printer that was given a data
/// time-out, now or by an earlier job, would else drop what others send it later.
void PrintJob::leaveBlock() {
  port_->write(dataCancelEnd);
}

/// Hands all of `data` to the link, each byte once, and counts in `accepted` what it took. False
/// when the link is lost or takes nothing for as long as the time-out.
bool PrintJob::move(std::span<const std::uint8_t> data, std::uint64_t& accepted) {
  Clock& clock = port_->platform().clock();
  const auto limit = std::chrono::milliseconds(std::max(port_->timeoutMillis(), 1000U));
  auto lastProgress = clock.monotonic();
  std::size_t pieceSize = largestPiece;
  accepted_ = &accepted;
  while (accepted < data.size()) {
    stopIfCancelled();
    if (clock.monotonic() > deadline_) {
      return stop(PrintObstacle::ExchangeFailed, "the printer took no more in time");
    }
    const auto rest = data.subspan(accepted);
    const auto piece = rest.first(std::min(rest.size(), pieceSize));
    const std::int32_t written = port_->write(piece);
    if (written < 0) {
      return stopForLostExchange("the link failed");
    }
    if (written > 0) {
      lastProgress = clock.monotonic();
      pieceSize = std::clamp(2 * static_cast<std::size_t>(written), smallestPiece, largestPiece);
      if (&accepted == &result_.bytesAccepted) {
        reportProgress();
      }
      continue;
    }
    if (!port_->isConnected()) {
      return stopForLostExchange("the link failed");
    }
    if (clock.monotonic() - lastProgress > limit) {
      return stop(PrintObstacle::ExchangeFailed,
                  "the printer took no data for " + inSeconds(port_->timeoutMillis()));
    }
    clock.usleep(lookPauseMicroseconds);
  }
  accepted_ = nullptr;
  return true;
}

void PrintJob::enter(PrintStage stage) {
  stage_ = stage;
  reportProgress();
}

void PrintJob::reportProgress() const {
  if (options_.progress) {
    options_.progress({stage_, result_.bytesAccepted, result_.bytesTotal});
  }
}

void PrintJob::end(std::span<const std::uint8_t> data) {
  enter(PrintStage::End);
  drainInput();
  report_.clear();
  status_ = {};
  const std::string failure = endBlock();
  if (status_.rawLength > 0) {
    result_.status = status_;
  }
  const auto obstacle = confirmationObstacle(data, port_->emulation());
  // A mark in the data can itself be what lets the wait for the sign time out.
  if (!failure.empty() && (!obstacle || isLinkLost())) {
    stopForLostExchange(failure);
  } else if (obstacle) {
    stop(PrintObstacle::NoProof, "cannot be confirmed: " + *obstacle);
  } else if (isProven()) {
    result_.outcome = PrintOutcome::Printed;
  } else if (status_.offline != 0) {
    stop(PrintObstacle::PrinterNotReady, whyOffline(status_));
  } else {
    stop(PrintObstacle::NoProof, whyUnproven());
  }
}

/// Why a block that ended on a printer that is on line proves nothing.
std::string PrintJob::whyUnproven() const {
  if (port_->emulation() == ZKEmulationQuorLine) {
    return "the printer's last answer is not a status with a counter";
  }
  if (const auto count = report_.lastCount()) {
    return "the printer reported " + std::to_string(*count) + " ends of jobs instead of this one's";
  }
  return "the printer was off line for a while or garbled its report, and has not reported the end "
         "of the job";
}

/// Ends the block on the port. Returns why that failed; "" if it did not.
std::string PrintJob::endBlock() {
  const auto start = port_->platform().clock().monotonic();
  try {
    const bool ended = endOnPort();
    awaitsReport_ = false;
    return ended ? "" : whyNotEnded(port_->platform().clock().monotonic() - start);
  } catch (const PortException& exception) {
    awaitsReport_ = false;
    return exception.reason();
  }
}

std::string PrintJob::whyNotEnded(std::chrono::nanoseconds waited) const {
  if (port_->emulation() == ZKEmulationUnknown) {
    return "no job can be confirmed without a known emulation";
  }
  const std::uint32_t limit = port_->endCheckedBlockTimeoutMillis();
  return waited < std::chrono::milliseconds(limit) ? "the printer's last status could not be had"
                                                   : "no confirmation within " + inSeconds(limit);
}

/// As the port ends a block; with a last status also where the port was not left to come to it.
bool PrintJob::endOnPort() {
  awaitsReport_ = port_->emulation() == ZKEmulationESCPOS;
  try {
    return port_->endCheckedBlock(&status_, statusLevel);
  } catch (const Reported&) {
    return port_->getParsedStatus(&status_, statusLevel);
  }
}

/// Whether the printer's sign for this job has been seen. That the block ended proves nothing: an
/// off-line printer ends it, too.
bool PrintJob::isProven() const {
  if (port_->emulation() == ZKEmulationQuorLine) {
    return hasCounter(status_) && status_.offline == 0 && status_.etbCounter == countOfTwoMarks;
  }
  return report_.lastCount() == countOfOneMark;
}

/// Throws away what waits in the input; of a printer that never stops talking, a mebibyte.
void PrintJob::drainInput() {
  for (std::size_t left = std::size_t{1} << 20U; left > 0;) {
    const auto bytes = port_->read(std::min<std::size_t>(left, 256));
    if (!bytes || bytes->empty()) {
      return;
    }
    left -= bytes->size();
  }
}

/// Whether the link is lost. Bytes that came before the loss keep a link connected until they are
/// read; nobody else reads them any more.
bool PrintJob::isLinkLost() {
  drainInput();
  return !port_->isConnected();
}

/// Tells the printer to drop the rest. The command in whose middle the job was stopped is completed
/// first: the printer would take the data cancel for its payload.
void PrintJob::finishCancelled(std::span<const std::uint8_t> data) {
  isFinishing_ = true;
  deadline_ = port_->platform().clock().monotonic() + cancelLimit;
  const std::size_t end = commandEnd(data, result_.bytesAccepted);
  std::uint64_t cancelBytes = 0;
  const bool told = port_->isConnected() && move(data.first(end), result_.bytesAccepted) &&
                    move(dataCancel, cancelBytes);
  if (told) {
    leaveBlock();
  }
  const bool isInCommand = result_.bytesAccepted < end;
  port_->abandonOutput();  // nobody waits for the rest of a job that is not wanted
  port_->close();
  stop(PrintObstacle::Cancelled,
       told          ? "cancelled, and the printer was told to drop the rest"
       : isInCommand ? "cancelled inside a command whose rest the printer still waits for"
                     : "cancelled");
}

/// Ends the job without a confirmation. Always false.
bool PrintJob::stop(PrintObstacle obstacle, const std::string& reason) {
  accepted_ = nullptr;
  const bool anyOut = result_.bytesAccepted > 0;
  result_.outcome = anyOut ? PrintOutcome::Unconfirmed : PrintOutcome::Refused;
  result_.obstacle = obstacle;
  result_.reason = reason + (anyOut ? progressInWords() : "");
  return false;
}

/// The same for an exchange that failed: because the link is lost, or as `otherwise` says.
bool PrintJob::stopForLostExchange(const std::string& otherwise) {
  return isLinkLost() ? stop(PrintObstacle::LinkLost, "link lost")
                      : stop(PrintObstacle::ExchangeFailed, otherwise);
}

std::string PrintJob::progressInWords() const {
  if (result_.bytesAccepted == result_.bytesTotal) {
    return " after all " + grouped(result_.bytesTotal) + " bytes";
  }
  return " after " + grouped(result_.bytesAccepted) + " of " + grouped(result_.bytesTotal) +
         " bytes";
}

}  // namespace quordalvane
