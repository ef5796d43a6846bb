#include "job/PrintJob.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "iphone-IOPort/Commands.h"
#include "job/Advice.h"
#include "job/PrintData.h"
#include "job/Words.h"

namespace quordalvane {
namespace {

// A port copies what it is given once more for each look at the link. Pieces of at most this size
// keep that cheap for jobs of many megabytes, and pieces of twice what the link took last on slow
// links. Smaller ones cost more in system calls than they save in copies.
constexpr std::size_t largestPiece = std::size_t{128} * 1024;
constexpr std::size_t smallestPiece = 256;

// A cancelled job's last word must be out within this time: people wait for it.
constexpr auto cancelLimit = std::chrono::milliseconds(500);

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
