#include "tools/quorport/simulate/Server.h"

#include <algorithm>
#include <chrono>
#include <nlohmann/json.hpp>
#include <utility>
#include <variant>

#include "logging/DescriptorOutput.h"
#include "tools/quorport/Json.h"
#include "tools/quorport/simulate/JobReport.h"

namespace quordalvane::tool {
namespace {

using namespace std::chrono_literals;
using simulator::Instant;

// A cut ends a job if nothing follows it for so long.
constexpr Instant quietTime = 1s;

// How long the answer to a request for the end may take to get through.
constexpr Instant farewellTime = 1s;

constexpr std::size_t mostChannels = 64;

Instant readClock() {
  return std::chrono::steady_clock::now().time_since_epoch();
}

timespec timeFrom(Instant now, Instant until) {
  const Instant left = std::max(until - now, Instant::zero());
  const auto whole = std::chrono::floor<std::chrono::seconds>(left);
  return {.tv_sec = whole.count(), .tv_nsec = (left - whole).count()};
}

bool isReadable(int descriptor) {
  pollfd asked{.fd = descriptor, .events = POLLIN, .revents = 0};
  return ::poll(&asked, 1, 0) > 0;
}

bool endsInCut(const simulator::Paper& paper) {
  return !paper.items().empty() && std::holds_alternative<simulator::Cut>(paper.items().back());
}

}  // namespace

Server::Server(simulator::PrinterState state, simulator::Faults faults, Places places,
               Habits habits, const Streams& streams)
    : streams_(streams),
      habits_(habits),
      places_(std::move(places)),
      printer_(std::move(state)),
      links_(printer_, std::move(faults)),
      control_(printer_, links_) {
  channels_.emplace_back(streams_.in, streams_.out, control_);
  printer_.keepJobs([this](const simulator::Paper& paper) { keep(paper); });
}

unsigned long Server::run() {
  workForHost(readClock());  // its place is the first line, before any answer
  for (Instant now = readClock(); !isDone(now); now = readClock()) {
    work(now);
    sleep(readClock());
  }
  host_.reset();
  links_.end();
  keep(printer_.tearOff());
  return jobsNotOk_;
}

void Server::sleep(Instant now) {
  std::vector<pollfd> awaited = {{.fd = signals_.descriptor(), .events = POLLIN, .revents = 0}};
  if (host_) {
    host_->await(awaited);
  }
  if (!host_ || hostMakesWay() || hostMayHaveLeft()) {
    awaited.push_back({.fd = places_.hosts->descriptor(), .events = POLLIN, .revents = 0});
  }
  if (places_.controls != nullptr && channels_.size() < mostChannels) {
    awaited.push_back({.fd = places_.controls->descriptor(), .events = POLLIN, .revents = 0});
  }
  for (const ControlChannel& channel : channels_) {
    channel.await(awaited);
  }
  const auto next = nextEvent(now);
  const timespec time = timeFrom(now, next.value_or(now));
  ::ppoll(awaited.data(), awaited.size(), next ? &time : nullptr, nullptr);
}

std::optional<Instant> Server::nextEvent(Instant now) const {
  std::vector<Instant> events;
  const auto add = [&events](const std::optional<Instant>& event) {
    if (event) {
      events.push_back(*event);
    }
  };
  add(quitAt_);
  add(links_.nextEvent());
  add(host_ ? host_->nextEvent(now) : printer_.nextEvent());
  if (const auto end = endOfJob(); end && *end > now) {
    add(end);
  }
  const auto earliest = std::min_element(events.begin(), events.end());
  return earliest == events.end() ? std::nullopt : std::optional(*earliest);
}

void Server::work(Instant now) {
  printer_.advance(now);
  links_.work(now);
  workForControls(now);
  workForHost(now);
  collectPaper(now);
}

void Server::workForHost(Instant now) {
  while (host_ || acceptHost(now)) {
    host_->work(now);
    if (hostMayHaveLeft() && isReadable(places_.hosts->descriptor())) {
      host_->readAhead();
      host_->work(now);
    }
    if (!host_->isOver() && !(hostMakesWay() && isReadable(places_.hosts->descriptor()))) {
      return;
    }
    const bool dropped = host_->wasDropped();
    host_.reset();
    links_.end();
    places_.hosts->resume(dropped);
  }
}

// A host that has left keeps its place while the printer prints its data. If the printer is stopped
// that may take for ever, and the next host has priority.
bool Server::hostMakesWay() const {
  return host_->hostEnded() && printer_.state().flag(simulator::Flag::Offline);
}

// While the printer is stopped the end of a host is hidden after bytes that nobody reads. It is
// looked for as soon as the next host waits.
bool Server::hostMayHaveLeft() const {
  return places_.hosts->hostsQueue() && !host_->hostEnded() && !host_->readsAhead() &&
         printer_.state().flag(simulator::Flag::Offline);
}

bool Server::acceptHost(Instant now) {
  auto line = places_.hosts->accept();
  announce();  // not before the place is ready for whoever reads it
  if (line != nullptr) {
    host_.emplace(std::move(line), links_.begin(now));
  }
  return host_.has_value();
}

// Reports the place at which hosts find the printer, unless that has been done. A later place is no
// answer to a control line, and is not written to their stream.
void Server::announce() {
  const std::string place = places_.hosts->place();
  if (place == announced_) {
    return;
  }
  const bool isFirst = announced_.empty();
  announced_ = place;
  const auto outcome = writeAll(isFirst ? streams_.out : streams_.err, announcement(place));
  if (outcome.error && isFirst) {
    complain("standard output does not take the place where it listens: " + outcome.error.message(),
             streams_);
  }
}

std::string Server::announcement(const std::string& place) const {
  return habits_.asJson ? inOneLine({{"listening", Json::array({place})}, {"web", nullptr}}) + "\n"
                        : "listening " + place + "\n";
}

void Server::workForControls(Instant now) {
  if (places_.controls != nullptr && channels_.size() < mostChannels) {
    if (auto line = places_.controls->accept()) {
      channels_.emplace_back(std::move(line), control_);
    }
  }
  for (ControlChannel& channel : channels_) {
    channel.work(now);
  }
  channels_.remove_if([](const ControlChannel& channel) { return channel.isOver(); });
  if (control_.quitWanted() && !quitAt_) {
    quitAt_ = now + farewellTime;
  }
}

void Server::collectPaper(Instant now) {
  const bool isWorking = printer_.buffered() > 0 &&
                         (printer_.nextEvent() || printer_.state().flag(simulator::Flag::Offline));
  const auto end = endOfJob();
  if (!isWorking && end && now >= *end) {
    keep(printer_.tearOff());
  }
}

// The printer knows that a job ends with its connection; on one that remains open a cut that
// nothing follows ends it. Empty while its end is unknown.
std::optional<Instant> Server::endOfJob() const {
  const auto lastReceived = host_ ? host_->lastReceived() : std::nullopt;
  if (habits_.per == ReceiptPer::Connection || !lastReceived || !endsInCut(printer_.paper())) {
    return std::nullopt;
  }
  return *lastReceived + quietTime;
}

void Server::keep(const simulator::Paper& paper) {
  if (paper.goesOn()) {
    complain("the paper grew too long and was torn off; the job continues on the next one",
             streams_);
  }
  if (paper.items().empty() && paper.record().isEmpty()) {
    return;
  }
  ReceiptFolder::Written written;
  if (places_.receipts != nullptr && !paper.items().empty()) {
    written = places_.receipts->add(habits_.per == ReceiptPer::Cut ? piecesOf(paper)
                                                                   : std::vector{paper});
  }
  if (!written.error.empty()) {
    complain(written.error, streams_);
  }
  report(paper, std::move(written.files));
}

void Server::report(const simulator::Paper& paper, std::vector<std::string> files) {
  const JobReport job{.job = ++jobs_,
                      .printer = announced_,
                      .ok = !habits_.strict || paper.record().isClean(),
                      .files = std::move(files)};
  jobsNotOk_ += job.ok ? 0 : 1;
  const std::string line = inOneLine(inJson(job, paper.record())) + "\n";
  if (const std::string why = ReceiptFolder::addBeside(job.files, line); !why.empty()) {
    complain(why, streams_);
  }
  if (habits_.asJson) {
    writeAll(streams_.out, line);
  }
}

bool Server::isDone(Instant now) {
  const bool isAnswering = std::any_of(channels_.begin(), channels_.end(),
                                       [](const auto& channel) { return channel.hasAnswers(); });
  return signals_.take() || (quitAt_ && (!isAnswering || now >= *quitAt_));
}

}  // namespace quordalvane::tool
