#include "tests/support/Script.h"

#include <sstream>

namespace quordalvane::test {

Script& Script::delivers(Bytes what, double at) {
  deliveries.push_back({std::move(what), at});
  return *this;
}

Script& Script::whenAsked(Bytes request, Reply reply) {
  answers.push_back({std::move(request), std::move(reply), false});
  return *this;
}

Script& Script::wheneverAsked(Bytes request, Reply reply) {
  answers.push_back({std::move(request), std::move(reply), true});
  return *this;
}

Script& Script::givesAtMost(std::size_t count) {
  mostPerRead = count;
  return *this;
}

Script& Script::readReturns(std::size_t nth, std::int64_t result) {
  readResults[nth] = result;
  return *this;
}

Script& Script::takesInAttempts(std::vector<std::size_t> counts) {
  attempts = std::move(counts);
  return *this;
}

Script& Script::takesAtMost(std::size_t count) {
  mostPerWrite = count;
  return *this;
}

Script& Script::hasNoSpace(double until) {
  noSpaceUntil = until;
  return *this;
}

Script& Script::writeReturns(std::size_t nth, std::int64_t result) {
  writeResults[nth] = result;
  return *this;
}

Script& Script::saysConnected(std::vector<bool> answers_) {
  connectedAnswers = std::move(answers_);
  return *this;
}

Script& Script::isLost(double at) {
  lostAt = at;
  return *this;
}

Script& Script::isBack(double at) {
  backAt = at;
  return *this;
}

Script& Script::isLostAfterBytes(std::size_t count) {
  lostAfterBytes = count;
  return *this;
}

Script& Script::isLostAfterReads(std::size_t count) {
  lostAfterReads = count;
  return *this;
}

Script& Script::stepsClock(std::size_t reading, std::int64_t seconds) {
  clockSteps[reading] = seconds;
  return *this;
}

Script& Script::startsPastTheSecond(std::int64_t microseconds) {
  startMicroseconds = microseconds;
  return *this;
}

namespace {

std::string shownPieces(const Reply& reply) {
  std::ostringstream text;
  for (const Piece& piece : reply) {
    text << ' ' << shown(piece.bytes) << '+' << piece.after << 's'
         << (piece.losesLink ? " and the link is lost" : "");
  }
  return text.str();
}

template <typename Value>
void tell(std::ostream& text, const char* what, const std::optional<Value>& value) {
  if (value) {
    text << what << ' ' << *value << '\n';
  }
}

template <typename Values>
void tellPairs(std::ostream& text, const char* what, const Values& values) {
  for (const auto& [nth, value] : values) {
    text << what << ' ' << nth << ": " << value << '\n';
  }
}

template <typename Values>
void tellList(std::ostream& text, const char* what, const Values& values) {
  text << (values.empty() ? "" : what);
  for (const auto value : values) {
    text << ' ' << value;
  }
  text << (values.empty() ? "" : "\n");
}

}  // namespace

std::string describe(const Script& script) {
  std::ostringstream text;
  text << "deliveries:" << shownPieces(script.deliveries) << '\n';
  for (const Script::Answer& answer : script.answers) {
    text << (answer.always ? "whenever " : "when ") << shown(answer.request) << ':'
         << shownPieces(answer.reply) << '\n';
  }
  tell(text, "most per read", script.mostPerRead);
  tellPairs(text, "result of read", script.readResults);
  tellList(text, "attempts", script.attempts);
  tell(text, "most per write", script.mostPerWrite);
  tell(text, "no space until", std::optional(script.noSpaceUntil));
  tellPairs(text, "result of write", script.writeResults);
  tellList(text, "connected", script.connectedAnswers);
  tell(text, "lost at", script.lostAt);
  tell(text, "back at", script.backAt);
  tell(text, "lost after bytes", script.lostAfterBytes);
  tell(text, "lost after reads", script.lostAfterReads);
  tellPairs(text, "clock step before reading", script.clockSteps);
  text << "start past the second: " << script.startMicroseconds << " us\n";
  return text.str();
}

}  // namespace quordalvane::test
