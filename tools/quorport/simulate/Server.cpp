#include "tools/quorport/simulate/Server.h"

#include <algorithm>
#include <chrono>
#include <nlohmann/json.hpp>
#include <utility>

#include "logging/DescriptorOutput.h"
#include "tools/quorport/Report.h"

namespace quordalvane::tool {
namespace {

using namespace std::chrono_literals;
using simulator::earlier;
using simulator::Instant;

// How long the server waits until the answer to `quit` has been written.
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

std::string specOf(const Station& station) {
  return station.place() + (station.name().empty() ? "" : ",name=" + station.name());
}

}  // namespace

Server::Server(const simulator::PrinterState& state, const simulator::Faults& faults, Places places,
               Habits habits, const Streams& streams)
    : streams_(streams),
      habits_(habits),
      places_(std::move(places)),
      writer_(places_.receipts.get()),
      own_(streams_.in, streams_.out, control_) {
  for (Host& host : places_.hosts) {
    Station& station = stations_.emplace_back(
        host.name, std::move(host.listener), state, faults, habits.printer,
        [this](Station& its, simulator::Paper paper) { keep(its, std::move(paper)); });
    control_.add(host.name, station.printer(), station.links(),
                 {.tearOff = [&station] { station.tearOff(); },
                  .printTest = [&station] { station.printTest(); },
                  .counters = [&station] { return station.counters(); }});
  }
  if (places_.web != nullptr) {
    audience_ = openWeb(std::move(places_.web), stations_, control_);
  }
}

unsigned long Server::run() {
  for (Station& station : stations_) {
    station.work(readClock());  // a printer must listen before its address is announced
  }
  announce();
  for (Instant now = readClock(); !isDone(now); now = readClock()) {
    work(now);
    sleep(readClock());
  }
  for (Station& station : stations_) {
    station.close();
  }
  report(writer_.finish());
  if (habits_.asJson) {
    own_.flush();
  }
  return jobsNotOk_;
}

void Server::sleep(Instant now) {
  std::vector<pollfd> awaited = {{.fd = signals_.descriptor(), .events = POLLIN, .revents = 0},
                                 {.fd = writer_.descriptor(), .events = POLLIN, .revents = 0}};
  std::optional<Instant> next = quitAt_;
  for (const Station& station : stations_) {
    station.await(awaited);
    next = earlier(next, station.nextEvent(now));
  }
  if (audience_ != nullptr) {
    audience_->await(awaited);
    next = earlier(next, audience_->nextEvent(now));
  }
  if (places_.controls != nullptr && channels_.size() < mostChannels) {
    awaited.push_back({.fd = places_.controls->descriptor(), .events = POLLIN, .revents = 0});
  }
  own_.await(awaited);
  for (const ControlChannel& channel : channels_) {
    channel.await(awaited);
  }
  const timespec time = timeFrom(now, next.value_or(now));
  ::ppoll(awaited.data(), awaited.size(), next ? &time : nullptr, nullptr);
}

void Server::work(Instant now) {
  for (Station& station : stations_) {
    station.advance(now);
  }
  workForControls(now);
  for (Station& station : stations_) {
    station.work(now);
  }
  announceOthers();
  report(writer_.take());
  if (audience_ != nullptr) {
    audience_->work(now);
  }
}

// Announces the addresses of the printers: as one line each, or with --json as one object.
void Server::announce() {
  Json places = Json::array();
  std::string lines;
  for (const Station& station : stations_) {
    const std::string place = specOf(station);
    announced_[&station] = place;
    places.push_back(place);
    lines += "listening " + place + "\n";
  }
  const Json web = audience_ == nullptr ? Json() : Json(audience_->address());
  lines += audience_ == nullptr ? "" : "web " + audience_->address() + "\n";
  const Json object = {{"listening", places}, {"web", web}};
  const auto outcome = writeAll(streams_.out, habits_.asJson ? inOneLine(object) + "\n" : lines);
  if (outcome.error) {
    complain("the address cannot be written to standard output: " + outcome.error.message(),
             streams_);
  }
}

// Writes to standard error each address that has changed, because standard output has the answers
// to control lines.
void Server::announceOthers() {
  for (const Station& station : stations_) {
    const std::string place = specOf(station);
    if (std::exchange(announced_[&station], place) != place) {
      const Json object = {{"listening", Json::array({place})}, {"web", nullptr}};
      writeAll(streams_.err,
               habits_.asJson ? inOneLine(object) + "\n" : "listening " + place + "\n");
    }
  }
}

void Server::workForControls(Instant now) {
  if (places_.controls != nullptr && channels_.size() < mostChannels) {
    if (auto line = places_.controls->accept()) {
      channels_.emplace_back(std::move(line), control_);
    }
  }
  own_.work(now);
  for (ControlChannel& channel : channels_) {
    channel.work(now);
  }
  channels_.remove_if([](const ControlChannel& channel) { return channel.isOver(); });
  if (control_.quitWanted() && !quitAt_) {
    quitAt_ = now + farewellTime;
  }
}

void Server::keep(Station& station, simulator::Paper paper) {
  if (paper.goesOn()) {
    complain("the paper grew too long and was torn off; the job continues on new paper", streams_);
  }
  if (audience_ != nullptr) {
    audience_->tearOff(numberOf(station), paper);
  }
  if (paper.items().empty() && paper.record().isEmpty()) {
    return;
  }
  JobReport job{.job = ++jobs_,
                .printer = station.name().empty() ? station.place() : station.name(),
                .ok = !habits_.strict || paper.record().isClean(),
                .files = {}};
  jobsNotOk_ += job.ok ? 0 : 1;
  writer_.add({.report = std::move(job),
               .paper = std::move(paper),
               .apart = habits_.printer.per == ReceiptPer::Cut,
               .station = numberOf(station),
               .isLookedAt = audience_ != nullptr});
}

std::size_t Server::numberOf(const Station& station) const {
  const auto found = std::find_if(stations_.begin(), stations_.end(),
                                  [&](const Station& one) { return &one == &station; });
  return static_cast<std::size_t>(std::distance(stations_.begin(), found));
}

void Server::report(std::vector<ReceiptWriter::Done> jobs) {
  for (ReceiptWriter::Done& job : jobs) {
    for (const std::string& why : job.complaints) {
      complain(why, streams_);
    }
    if (habits_.asJson) {
      own_.say(job.line);
    }
    if (audience_ != nullptr) {
      audience_->keep(std::move(job));
    }
  }
}

bool Server::isDone(Instant now) {
  const bool isAnswering =
      own_.hasAnswers() || std::any_of(channels_.begin(), channels_.end(),
                                       [](const auto& channel) { return channel.hasAnswers(); });
  return signals_.take() || (quitAt_ && (!isAnswering || now >= *quitAt_));
}

}  // namespace quordalvane::tool
