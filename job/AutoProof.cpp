#include "job/AutoProof.h"

#include <map>
#include <mutex>

#include "job/DropCommand.h"
#include "job/InOrderProof.h"
#include "job/NoProof.h"
#include "job/ProcessIdProof.h"
#include "job/RealTimeStatus.h"

namespace quordalvane {
namespace {

// A printer that knows any of the three answers within a round trip.
constexpr auto longestSilence = std::chrono::seconds(1);
constexpr auto grace = std::chrono::milliseconds(100);

constexpr std::uint8_t resetAndMark[] = {0x1b, 0x1d, 0x03, 0x02, 0x00, 0x00,
                                         0x1b, 0x1d, 0x03, 0x01, 0x00, 0x00};

/// The proofs that were found, as long as their ports live.
class Findings {
 public:
  ProofKind of(const std::shared_ptr<ExternalAccessoryPort>& port) {
    const std::lock_guard lock(mutex_);
    const auto found = kinds_.find(port);
    return found == kinds_.end() ? ProofKind::Auto : found->second;
  }

  void keep(const std::shared_ptr<ExternalAccessoryPort>& port, ProofKind kind) {
    const std::lock_guard lock(mutex_);
    std::erase_if(kinds_, [](const auto& entry) { return entry.first.expired(); });
    kinds_[port] = kind;
  }

 private:
  std::mutex mutex_;
  std::map<std::weak_ptr<ExternalAccessoryPort>, ProofKind, std::owner_less<>> kinds_;
};

Findings& findings() {
  static Findings all;
  return all;
}

}  // namespace

MaybeSetback AutoProof::begin() {
  const auto port = link().port().shared_from_this();
  ProofKind kind = findings().of(port);
  if (kind == ProofKind::Auto) {
    if (auto setback = refuseUnready(link(), result())) {
      return setback;
    }
    if (auto setback = ask(kind)) {
      return setback;
    }
    if (kind != ProofKind::None) {
      findings().keep(port, kind);
    }
  }
  if (kind == ProofKind::None) {
    chosen_ = std::make_unique<NoProof>(
        "this printer confirms nothing: it answers none of the questions that prove a job", link(),
        result());
  } else {
    chosen_ = makeProof(kind, link(), result());
  }
  chosen_->setWaiting(waiting());
  result().proof = kind;
  return chosen_->begin();
}

/// All three questions in one write: nothing of them moves paper, and the answers differ in form.
MaybeSetback AutoProof::ask(ProofKind& found) {
  const JobId id = randomProcessId();
  auto question = processIdCommand(id);
  question.insert(question.end(), std::begin(resetAndMark), std::end(resetAndMark));
  question.insert(question.end(), std::begin(inOrderRequest), std::end(inOrderRequest));
  if (auto setback = link().send(question)) {
    return setback;
  }
  const auto isAny = [&](ByteView) {
    return answers_.hasNamed(id) || answers_.lastReport() || answers_.inOrderCount() > 0;
  };
  // The in-order answer is the last, and nothing is stronger than the report.
  const auto isDecided = [&](ByteView) {
    return answers_.lastReport() == 1 || answers_.inOrderCount() > 0;
  };
  if (link().await(isAny, longestSilence)) {
    link().await(isDecided, grace);
  }
  found = answers_.lastReport() == 1    ? ProofKind::Block
          : answers_.hasNamed(id)       ? ProofKind::ProcessId
          : answers_.inOrderCount() > 0 ? ProofKind::InOrder
                                        : ProofKind::None;
  return std::nullopt;
}

void AutoProof::leave() {
  if (chosen_) {
    chosen_->leave();
  }
}

ByteView AutoProof::dropCommand() const {
  return chosen_ ? chosen_->dropCommand() : ByteView(dropAll);
}

void AutoProof::bytesWritten(ByteView bytes) {
  if (chosen_) {
    chosen_->bytesWritten(bytes);
  }
}

void AutoProof::bytesRead(ByteView bytes) {
  if (chosen_) {
    chosen_->bytesRead(bytes);
  } else {
    answers_.feed(bytes);
  }
}

}  // namespace quordalvane
