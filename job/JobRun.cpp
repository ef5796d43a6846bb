#include "job/JobRun.h"

#include <chrono>

#include "job/Advice.h"
#include "job/PrintData.h"
#include "job/Words.h"

namespace quordalvane {
namespace {

// The last commands of a cancelled job must be sent within this time, because a person is waiting
// for the cancel.
constexpr auto cancelLimit = std::chrono::milliseconds(500);

}  // namespace

JobRun::JobRun(const std::shared_ptr<ExternalAccessoryPort>& port, const PrintJob::Options& options,
               const std::atomic<bool>& cancelled)
    : options_(options),
      link_(port, cancelled),
      kind_(options.proof ? *options.proof : proofOf(*port)),
      proof_(makeProof(kind_, link_, result_)) {
  const bool isLineMode = port->emulation() == ZKEmulationQuorLine;
  result_.proof = kind_ == ProofKind::Auto && isLineMode ? ProofKind::Block : kind_;
  proof_->setWaiting([this](const std::string& reason) { reportWaiting(reason); });
  link_.setListener(proof_.get());
}

PrintResult JobRun::run(ByteView data) {
  result_.bytesTotal = data.size();
  try {
    print(data);
  } catch (const PortLink::Cancelled&) {
    finishCancelled(data);
  }
  result_.advice = adviceFor(result_);
  return result_;
}

void JobRun::print(ByteView data) {
  link_.goOn();
  if (data.empty()) {
    return stop({PrintObstacle::NoProof, "there is nothing to print"});
  }
  enter(PrintStage::Begin);
  if (const auto setback = proof_->begin()) {
    proof_->leave();
    return stop(*setback);
  }
  enter(PrintStage::Data);
  result_.status.reset();  // an earlier status says nothing about the data
  const bool isChecked = kind_ != ProofKind::None;
  const auto reply =
      isChecked && isNeverAnswered(data) ? PortLink::Reply::None : PortLink::Reply::Possible;
  if (const auto setback = link_.move(
          data, result_.bytesAccepted, [this] { reportProgress(); }, reply)) {
    return stop(*setback);
  }
  enter(PrintStage::End);
  if (const auto setback = proof_->end(data)) {
    return stop(*setback);
  }
  result_.outcome = PrintOutcome::Printed;
}

void JobRun::enter(PrintStage stage) {
  stage_ = stage;
  reportProgress();
}

void JobRun::reportProgress() const {
  if (options_.progress) {
    options_.progress({stage_, result_.bytesAccepted, result_.bytesTotal, waitsFor_});
  }
}

void JobRun::reportWaiting(const std::string& reason) {
  if (reason != waitsFor_) {
    waitsFor_ = reason;
    reportProgress();
  }
}

/// Makes the printer drop the rest of the job. If the job was stopped inside a command, this
/// command is completed first. Otherwise the printer would read the next commands as the rest of
/// this command.
void JobRun::finishCancelled(ByteView data) {
  link_.ignoreCancel();
  const std::size_t end = commandEnd(data, result_.bytesAccepted);
  bool isTold = false;
  try {
    isTold = link_.within(cancelLimit, [&] {
      return link_.port().isConnected() && !link_.move(data.first(end), result_.bytesAccepted) &&
             !link_.send(proof_->dropCommand());
    });
  } catch (const PortLink::GivenUp&) {
  }
  const bool isInCommand = result_.bytesAccepted < end;
  link_.port()
      .abandonOutput();  // closes the port without waiting for the rest of the cancelled job
  link_.port().close();
  stop({PrintObstacle::Cancelled,
        isTold        ? "cancelled, and the printer was made to drop the rest"
        : isInCommand ? "cancelled while the printer waits for the rest of a command"
                      : "cancelled"});
}

void JobRun::stop(const Setback& setback) {
  const bool isAnyOut = result_.bytesAccepted > 0;
  result_.outcome = isAnyOut ? PrintOutcome::Unconfirmed : PrintOutcome::Refused;
  result_.obstacle = setback.obstacle;
  result_.reason = setback.reason + (isAnyOut ? progressInWords() : "");
}

std::string JobRun::progressInWords() const {
  if (result_.bytesAccepted == result_.bytesTotal) {
    return " after all " + grouped(result_.bytesTotal) + " bytes";
  }
  return " after " + grouped(result_.bytesAccepted) + " of " + grouped(result_.bytesTotal) +
         " bytes";
}

}  // namespace quordalvane
