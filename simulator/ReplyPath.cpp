#include "simulator/ReplyPath.h"

#include <algorithm>
#include <random>

namespace quordalvane::simulator {
namespace {

using namespace std::chrono_literals;

constexpr Instant betweenPieces = 50ms;

// Changes one of the four characters of the process ID to another printable one.
void changeId(Bytes& report, std::mt19937_64& chance) {
  constexpr std::uint8_t first = 0x20;
  constexpr std::uint8_t last = 0x7e;
  std::uint8_t& character = report[2 + chance() % 4];
  character = character == last ? first : static_cast<std::uint8_t>(character + 1);
}

// Changes `reply` to a reply of the same kind for another host's job, and returns it.
Bytes anothers(ReplyKind kind, Bytes reply, std::mt19937_64& chance) {
  if (kind == ReplyKind::ProcessId) {
    changeId(reply, chance);
  } else if (kind == ReplyKind::Block) {
    std::uint8_t& counter = reply[6];
    counter = static_cast<std::uint8_t>(counter + 1 + chance() % 255);
  }
  return reply;  // replies of all other kinds do not depend on the job
}

}  // namespace

bool ReplyPath::befalls(const Fault& fault) const {
  if (fault.kind == FaultKind::Silence) {
    return count_ >= fault.reply;
  }
  const bool isOfItsKind = !fault.replyKind || fault.replyKind == kind_;
  return isOfItsKind && (fault.reply == 0 || fault.reply == count_);
}

bool ReplyPath::isLost() const {
  return std::any_of(faults_.begin(), faults_.end(), [this](const Fault& fault) {
    return (fault.kind == FaultKind::DropReply || fault.kind == FaultKind::Silence) &&
           befalls(fault);
  });
}

void ReplyPath::distort(Bytes& reply) const {
  for (const Fault& fault : faults_) {
    if (befalls(fault)) {
      distort(reply, fault);
    }
  }
}

void ReplyPath::distort(Bytes& reply, const Fault& fault) const {
  std::mt19937_64 chance(seed_ + count_);
  const Bytes original = reply;
  if (fault.kind == FaultKind::DuplicateReply) {
    reply.insert(reply.end(), original.begin(), original.end());
  } else if (fault.kind == FaultKind::CorruptReply) {
    std::uint8_t& byte = reply[chance() % reply.size()];
    byte = static_cast<std::uint8_t>(byte ^ 1U << chance() % 8);
  } else if (fault.kind == FaultKind::StrayByte) {
    reply.insert(reply.begin(), static_cast<std::uint8_t>(fault.count));
  } else if (fault.kind == FaultKind::WrongId && kind_ == ReplyKind::ProcessId) {
    changeId(reply, chance);
  } else if (fault.kind == FaultKind::ForeignReply) {
    const Bytes foreign = anothers(kind_, original, chance);
    reply.insert(reply.begin(), foreign.begin(), foreign.end());
  }
}

void ReplyPath::send(ByteView reply, Instant at, ReplyKind kind) {
  ++count_;
  kind_ = kind;
  if (isLost()) {
    return;
  }
  Bytes bytes(reply.begin(), reply.end());
  distort(bytes);
  dispatch(bytes, at);
}

void ReplyPath::dispatch(const Bytes& reply, Instant at) {
  Instant due = at;
  std::vector<std::uint64_t> splits;
  for (const Fault& fault : faults_) {
    if (!befalls(fault)) {
      continue;
    }
    if (fault.kind == FaultKind::LateReply) {
      due += fault.time;
    } else if (fault.kind == FaultKind::SplitReply) {
      splits.insert(splits.end(), fault.offsets.begin(), fault.offsets.end());
    }
  }
  if (!underWay_.empty()) {
    due = std::max(due, underWay_.back().due);
  }
  for (std::size_t i = 0; i < reply.size(); ++i) {
    if (std::find(splits.begin(), splits.end(), i) != splits.end()) {
      due += betweenPieces;
    }
    underWay_.push_back({reply[i], due});
  }
}

std::optional<Instant> ReplyPath::nextArrival() const {
  if (underWay_.empty()) {
    return std::nullopt;
  }
  return underWay_.front().due;
}

std::optional<std::uint8_t> ReplyPath::arrive(Instant now) {
  if (underWay_.empty() || underWay_.front().due > now) {
    return std::nullopt;
  }
  const std::uint8_t byte = underWay_.front().byte;
  underWay_.pop_front();
  return byte;
}

}  // namespace quordalvane::simulator
