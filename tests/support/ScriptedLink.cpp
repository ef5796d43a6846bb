#include "tests/support/ScriptedLink.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace quordalvane::test {

using test::Instant;

ScriptedLink::ScriptedLink(Script script, test::VirtualClock& clock)
    : script_(std::move(script)), clock_(clock) {}

Instant ScriptedLink::instant(double seconds) const {
  return start_ + std::chrono::round<Instant>(std::chrono::duration<double>(seconds));
}

void ScriptedLink::start() {
  start_ = clock_.monotonic();
  started_ = true;
  arriveLater(script_.deliveries, start_);
}

void ScriptedLink::arriveLater(const Reply& reply, Instant from) {
  for (const Piece& piece : reply) {
    const Instant arrival = from - start_ + instant(piece.after);
    if (piece.losesLink) {
      script_.lostAt = std::chrono::duration<double>(arrival - start_).count();
    }
    if (!piece.bytes.empty()) {
      arriving_.emplace(arrival, piece.bytes);
    }
  }
}

void ScriptedLink::beginAttempt() {
  if (started_) {
    budget_.reset();
    if (attempt_ < script_.attempts.size()) {
      budget_ = script_.attempts[attempt_++];
    }
  }
}

void ScriptedLink::beforeClockReading() {
  const auto step = started_ ? script_.clockSteps.find(++readings_) : script_.clockSteps.end();
  if (step != script_.clockSteps.end()) {
    clock_.stepWallClock(std::chrono::seconds(step->second));
  }
}

bool ScriptedLink::isLost() const {
  if (!started_) {
    return false;
  }
  const Instant now = clock_.scheduler().now();
  const bool isOut = script_.lostAt && now >= instant(*script_.lostAt) &&
                     !(script_.backAt && now >= instant(*script_.backAt));
  return isOut || calls_ > script_.lostAfterCalls ||
         (script_.lostAfterBytes && written_ >= *script_.lostAfterBytes) ||
         (script_.lostAfterReads && reads_ >= *script_.lostAfterReads);
}

bool ScriptedLink::isConnected() {
  ++calls_;
  if (started_ && questions_ < script_.connectedAnswers.size()) {
    return script_.connectedAnswers[questions_++];
  }
  return !isLost();
}

bool ScriptedLink::hasSpace() {
  ++calls_;
  return (!budget_ || *budget_ > 0) && clock_.monotonic() >= instant(script_.noSpaceUntil);
}

bool ScriptedLink::hasBytes() {
  ++calls_;
  return !arriving_.empty() && arriving_.begin()->first <= clock_.monotonic();
}

std::int64_t ScriptedLink::write(std::span<const std::uint8_t> data) {
  ++calls_;
  if (const auto result = script_.writeResults.find(++writes_);
      result != script_.writeResults.end()) {
    return result->second;
  }
  constexpr std::size_t all = std::numeric_limits<std::size_t>::max();
  const std::size_t taken =
      std::min({data.size(), budget_.value_or(all), script_.mostPerWrite.value_or(all)});
  if (budget_) {
    *budget_ -= taken;
  }
  written_ += taken;
  isAsked_ = isAsked_ || (mayBeAnswered_ && taken > 0);
  answer(data.first(taken));
  return static_cast<std::int64_t>(taken);
}

void ScriptedLink::answer(std::span<const std::uint8_t> data) {
  for (const std::uint8_t byte : data) {
    unanswered_.push_back(byte);
    if (Script::Answer* const next = nextAnswer()) {
      arriveLater(next->reply, clock_.monotonic());
      unanswered_.clear();
      if (!next->always) {
        script_.answers.erase(script_.answers.begin() + (next - script_.answers.data()));
      }
    }
  }
}

/// The answer to the longest request among the bytes just sent. If several answers fit, an answer
/// that is given only once precedes an answer that is always given, and an earlier answer precedes
/// a later answer.
Script::Answer* ScriptedLink::nextAnswer() {
  const auto rank = [](const Script::Answer& answer) {
    return std::pair(answer.request.size(), !answer.always);
  };
  Script::Answer* best = nullptr;
  for (Script::Answer& candidate : script_.answers) {
    const Bytes& request = candidate.request;
    const bool asked = request.size() <= unanswered_.size() &&
                       std::equal(request.rbegin(), request.rend(), unanswered_.rbegin());
    if (asked && (best == nullptr || rank(candidate) > rank(*best))) {
      best = &candidate;
    }
  }
  return best;
}

std::int64_t ScriptedLink::read(std::span<std::uint8_t> buffer) {
  ++calls_;
  if (const auto result = script_.readResults.find(++reads_); result != script_.readResults.end()) {
    return result->second;
  }
  const std::size_t most = std::min(buffer.size(), script_.mostPerRead.value_or(buffer.size()));
  std::size_t taken = 0;
  while (taken < most && hasBytes()) {
    Bytes& first = arriving_.begin()->second;
    const std::size_t count = std::min(most - taken, first.size());
    std::copy_n(first.begin(), count, buffer.begin() + static_cast<std::ptrdiff_t>(taken));
    first.erase(first.begin(), first.begin() + static_cast<std::ptrdiff_t>(count));
    taken += count;
    if (first.empty()) {
      arriving_.erase(arriving_.begin());
    }
  }
  isAsked_ = isAsked_ && taken == 0;
  return static_cast<std::int64_t>(taken);
}

bool ScriptedLink::expectsBytes() const {
  return script_.expects == Script::Expects::WhereAsked
             ? isAsked_
             : script_.expects == Script::Expects::Always;
}

void ScriptedLink::waitForSpace(double seconds) {
  const bool full = budget_ && *budget_ == 0;
  waitUntil(full ? Instant::max() : instant(script_.noSpaceUntil), seconds);
}

void ScriptedLink::waitForBytes(double seconds) {
  waitUntil(arriving_.empty() ? Instant::max() : arriving_.begin()->first, seconds);
}

void ScriptedLink::waitUntil(Instant ready, double seconds) {
  const Instant now = clock_.monotonic();
  const Instant deadline =
      now + std::chrono::round<Instant>(std::chrono::duration<double>(seconds));
  const Instant lost = script_.lostAt ? instant(*script_.lostAt) : Instant::max();
  if (const Instant end = std::min({ready, deadline, std::max(lost, now)}); end > now) {
    clock_.scheduler().waitUntil(end);
  }
}

namespace {

/// The part that both directions of a scripted session share.
template <typename Stream>
class ScriptedStream : public Stream {
 public:
  explicit ScriptedStream(std::shared_ptr<ScriptedLink> link) : link_(std::move(link)) {}

  void setDelegate(std::weak_ptr<const void>) override {}
  void scheduleInRunLoop(NSRunLoop&, std::string_view) override {}
  void removeFromRunLoop(NSRunLoop&, std::string_view) override {}
  void open() override {}
  void close() override { closed_ = true; }

 protected:
  ScriptedLink& link() { return *link_; }
  bool isClosed() const { return closed_; }

 private:
  const std::shared_ptr<ScriptedLink> link_;
  bool closed_ = false;
};

class ScriptedInput : public ScriptedStream<NSInputStream> {
 public:
  using ScriptedStream::ScriptedStream;
  bool hasBytesAvailable() override { return !isClosed() && link().hasBytes(); }
  bool expectsBytes() override { return link().expectsBytes(); }
  std::int64_t read(std::uint8_t* buffer, std::size_t maxLength) override {
    return link().read({buffer, maxLength});
  }
  void waitUntilReady(double seconds) override { link().waitForBytes(seconds); }
};

class ScriptedOutput : public ScriptedStream<NSOutputStream> {
 public:
  using ScriptedStream::ScriptedStream;
  bool hasSpaceAvailable() override { return !isClosed() && link().hasSpace(); }
  void setMayBeAnswered(bool mayBeAnswered) override { link().setMayBeAnswered(mayBeAnswered); }
  std::int64_t write(const std::uint8_t* buffer, std::size_t maxLength) override {
    return link().write({buffer, maxLength});
  }
  void waitUntilReady(double seconds) override { link().waitForSpace(seconds); }
};

class ScriptedSession : public EASession {
 public:
  explicit ScriptedSession(const std::shared_ptr<ScriptedLink>& link)
      : input_(std::make_shared<ScriptedInput>(link)),
        output_(std::make_shared<ScriptedOutput>(link)) {}
  std::shared_ptr<NSInputStream> inputStream() override { return input_; }
  std::shared_ptr<NSOutputStream> outputStream() override { return output_; }

 private:
  const std::shared_ptr<NSInputStream> input_;
  const std::shared_ptr<NSOutputStream> output_;
};

}  // namespace

std::shared_ptr<EASession> ScriptedAccessory::openSession(const std::string&) {
  return std::make_shared<ScriptedSession>(link_);
}

}  // namespace quordalvane::test
