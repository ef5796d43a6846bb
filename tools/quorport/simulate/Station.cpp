#include "tools/quorport/simulate/Station.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>
#include <utility>
#include <variant>

#include "tools/quorport/simulate/TestHost.h"

namespace quordalvane::tool {
namespace {

using namespace std::chrono_literals;
using simulator::earlier;
using simulator::Instant;

// A paper cut ends the job if nothing is received for this time after the cut.
constexpr Instant quietTime = 1s;

// A host that sends nothing for this time, and has no data in the printer, must let the next host
// print.
constexpr Instant turnTime = 200ms;

constexpr std::size_t mostWaiting = 64;

bool isReadable(int descriptor) {
  pollfd asked{.fd = descriptor, .events = POLLIN, .revents = 0};
  return ::poll(&asked, 1, 0) > 0;
}

bool endsInCut(const simulator::Paper& paper) {
  return !paper.items().empty() && std::holds_alternative<simulator::Cut>(paper.items().back());
}

}  // namespace

Station::Station(std::string name, std::unique_ptr<Listener> listener,
                 simulator::PrinterState state, simulator::Faults faults, Habits habits,
                 Keeper keep)
    : name_(std::move(name)),
      habits_(habits),
      keep_(std::move(keep)),
      listener_(std::move(listener)),
      printer_(std::move(state)),
      links_(printer_, std::move(faults)) {
  printer_.keepJobs([this](simulator::Paper paper) { give(std::move(paper)); });
}

void Station::await(std::vector<pollfd>& awaited) const {
  if (host_) {
    host_->await(awaited);
  }
  if (listensNow()) {
    awaited.push_back({.fd = listener_->descriptor(), .events = POLLIN, .revents = 0});
  }
}

// If a host waits, the loop must wake when the current host has been quiet for `turnTime`.
std::optional<Instant> Station::nextEvent(Instant now) const {
  std::optional<Instant> next =
      earlier(links_.nextEvent(), host_ ? host_->nextEvent(now) : printer_.nextEvent());
  if (const auto end = endOfJob(); end && *end > now) {
    next = earlier(next, end);
  }
  if (host_ && !waiting_.empty()) {
    next = earlier(next, now + turnTime);
  }
  return next;
}

bool Station::listensNow() const {
  if (!host_ || hostMakesWay() || hostMayHaveLeft()) {
    return true;
  }
  const bool wantsOthers = habits_.hosts != HostRule::One && listener_->hostsQueue();
  return wantsOthers && waiting_.size() < mostWaiting;
}

void Station::advance(Instant now) {
  printer_.advance(now);
  links_.work(now);
}

void Station::work(Instant now) {
  welcome(now);
  if (host_ && habits_.hosts == HostRule::Refuse && !hostMakesWay()) {
    turnAway();
  } else if (host_ && habits_.hosts == HostRule::Turns) {
    letHostsQueue();
  }
  if (host_ && !waiting_.empty()) {
    takeTurns(now);
  }
  collectPaper(now);
}

void Station::welcome(Instant now) {
  while (host_ || acceptHost(now)) {
    host_->work(now);
    if (hostMayHaveLeft() && somebodyComes()) {
      host_->readAhead();
      host_->work(now);
    }
    if (!host_->isOver() && !(hostMakesWay() && somebodyComes())) {
      return;
    }
    const bool dropped = host_->wasDropped();
    letHostGo();
    listener_->resume(dropped);
  }
}

bool Station::somebodyComes() const {
  return !waiting_.empty() || isReadable(listener_->descriptor());
}

bool Station::acceptHost(Instant now) {
  std::unique_ptr<Line> line;
  if (waiting_.empty()) {
    line = listener_->accept();
  } else {
    line = std::move(waiting_.front());
    waiting_.pop_front();
  }
  if (line != nullptr) {
    host_.emplace(std::move(line), links_.begin(now));
    if (watchHosts_) {
      watchHosts_(true);
    }
  }
  return host_.has_value();
}

void Station::letHostGo() {
  host_.reset();
  links_.end();
  if (watchHosts_) {
    watchHosts_(false);
  }
}

void Station::turnAway() {
  if (!listener_->hostsQueue()) {
    return;
  }
  while (const auto line = listener_->accept()) {
    line->resetOnClose();
  }
}

void Station::letHostsQueue() {
  while (listener_->hostsQueue() && waiting_.size() < mostWaiting) {
    auto line = listener_->accept();
    if (line == nullptr) {
      break;
    }
    waiting_.push_back(std::move(line));
  }
}

// If the current host has paused, replaces it by the first waiting host that has sent bytes.
void Station::takeTurns(Instant now) {
  if (!mayMakeRoom(now)) {
    return;
  }
  const auto next = std::find_if(waiting_.begin(), waiting_.end(), [](const auto& line) {
    return isReadable(line->descriptor().number());
  });
  if (next == waiting_.end()) {
    return;
  }
  waiting_.splice(waiting_.begin(), waiting_, next);
  waiting_.push_back(host_->release());
  letHostGo();
  welcome(now);
}

bool Station::mayMakeRoom(Instant now) const {
  const auto last = host_->lastReceived();
  return host_->isIdle() && printer_.buffered() == 0 && (!last || now >= *last + turnTime);
}

// Returns true if the next host must be served now, because the current host has left and the
// printer is off line. Usually the next host waits until the last bytes of the current host are
// printed. But a printer that is off line may never print these bytes.
bool Station::hostMakesWay() const {
  return host_->hostEnded() && printer_.state().flag(simulator::Flag::Offline);
}

// Returns true if the current host may have left unnoticed. While the printer is off line, unread
// bytes hide that a host has left. These bytes are therefore read when another host waits.
bool Station::hostMayHaveLeft() const {
  return listener_->hostsQueue() && !host_->hostEnded() && !host_->readsAhead() &&
         printer_.state().flag(simulator::Flag::Offline);
}

void Station::collectPaper(Instant now) {
  const bool isWorking = printer_.buffered() > 0 &&
                         (printer_.nextEvent() || printer_.state().flag(simulator::Flag::Offline));
  const auto end = endOfJob();
  if (!isWorking && end && now >= *end) {
    tearOff();
  }
}

void Station::give(simulator::Paper paper) {
  const bool isEmpty = paper.items().empty() && paper.record().isEmpty();
  done_.jobs += isEmpty ? 0 : 1;
  done_.add(paper);
  keep_(*this, std::move(paper));
}

Counters Station::counters() const {
  Counters all = done_;
  all.add(printer_.paper());
  return all;
}

void Station::printTest() {
  if (waiting_.size() >= mostWaiting) {
    throw std::invalid_argument("too many hosts are already waiting for this printer");
  }
  waiting_.push_back(testHost(printer_.state()));
}

// Returns the time at which a paper cut ends the job; empty if no cut ends it. On a connection that
// remains open, a job ends after a cut if nothing more is received. The end of the connection also
// ends the job, but the printer itself notices that.
std::optional<Instant> Station::endOfJob() const {
  const auto lastReceived = host_ ? host_->lastReceived() : std::nullopt;
  if (habits_.per == ReceiptPer::Connection || !lastReceived || !endsInCut(printer_.paper())) {
    return std::nullopt;
  }
  return *lastReceived + quietTime;
}

void Station::close() {
  if (host_) {
    letHostGo();
  }
  waiting_.clear();
  tearOff();
}

}  // namespace quordalvane::tool
