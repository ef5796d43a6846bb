// Shows the printers to browsers. Each change of a printer becomes an event, and requests from
// browsers become control lines.

#include <chrono>
#include <deque>
#include <nlohmann/json.hpp>
#include <utility>

#include "simulator/VirtualPrinter.h"
#include "tools/http/Server.h"
#include "tools/quorport/CommandFailure.h"
#include "tools/quorport/simulate/Audience.h"
#include "tools/quorport/simulate/SocketListener.h"
#include "tools/quorport/web/Base64.h"
#include "tools/quorport/web/PaperArtist.h"
#include "tools/quorport/web/PrinterShow.h"
#include "tools/quorport/web/ReceiptShelf.h"
#include "tools/quorport/web/Site.h"
#include "tools/quorport/web/TrafficLog.h"

namespace quordalvane::tool {
namespace {

using namespace std::chrono_literals;
using simulator::Instant;

// Within this time, changed states and new log entries are sent to the browsers at most once.
constexpr Instant pause = 50ms;

std::int64_t millisecondsNow() {
  return std::chrono::duration_cast<std::chrono::milliseconds>(
             std::chrono::system_clock::now().time_since_epoch())
      .count();
}

http::Endpoint endpointOf(const Listener& place) {
  constexpr std::string_view scheme = "tcp:";
  const auto address = parseListenAddress(place.place().substr(scheme.size()));
  return {.host = address->host, .port = address->port};
}

Json inJson(const PaperArtist::Drawing& drawing, const simulator::Strip& strip) {
  return {{"printer", drawing.printer + 1}, {"row", strip.row},         {"height", strip.height},
          {"width", drawing.width},         {"png", base64(strip.png)}, {"text", ""},
          {"cuts", Json::array()},          {"time", drawing.printed}};
}

// Only the last event of a drawing contains the text and the cuts of the drawing.
std::vector<std::pair<std::string, unsigned>> eventsOf(const PaperArtist::Drawing& drawing) {
  std::vector<Json> events;
  for (const simulator::Strip& strip : drawing.change.strips) {
    events.push_back(inJson(drawing, strip));
  }
  const bool hasMore = !drawing.text.empty() || !drawing.change.cuts.empty();
  if (events.empty() && hasMore) {
    events.push_back(inJson(drawing, {.row = drawing.length, .height = 0, .png = {}}));
    events.back().erase("png");
  }
  if (hasMore) {
    events.back()["text"] = drawing.text;
    for (const auto& cut : drawing.change.cuts) {
      events.back()["cuts"].push_back({{"row", cut.row}, {"partial", cut.partial}});
    }
  }
  std::vector<std::pair<std::string, unsigned>> texts;
  texts.reserve(events.size());
  for (const Json& event : events) {
    texts.emplace_back(inOneLine(event), event["height"].get<unsigned>());
  }
  return texts;
}

class Web : public Audience {
 public:
  Web(std::unique_ptr<Listener> place, std::list<Station>& stations, Control& control)
      : place_(std::move(place)),
        site_(printers_, receipts_, traffic_, control),
        server_(place_->descriptor(), endpointOf(*place_), [this](const http::Request& request) {
          return site_.answer(request, server_.events(), now_);
        }) {
    for (Station& station : stations) {
      const auto number = static_cast<unsigned>(printers_.size() + 1);
      printers_.emplace_back(number, station, control);
      station.printer().watch([this, number](const simulator::VirtualPrinter::Deed& deed) {
        traffic_.add(number, deed, millisecondsNow());
      });
      station.watchHosts([this, number](bool isConnected) {
        traffic_.addHost(number, isConnected, millisecondsNow());
      });
    }
    control.listen(
        [this](std::string_view line, std::string_view answer, std::optional<std::size_t> only) {
          const auto number = static_cast<unsigned>(only ? *only + 1 : 0);
          traffic_.addControl(number, line, answer, millisecondsNow());
        });
  }

  std::string address() const override { return server_.address(); }

  void await(std::vector<pollfd>& awaited) const override {
    server_.await(awaited);
    awaited.push_back({.fd = artist_.descriptor(), .events = POLLIN, .revents = 0});
  }

  std::optional<Instant> nextEvent(Instant now) const override {
    const auto its = server_.nextEvent(now);
    return isDue_ ? std::min(its.value_or(shownAt_ + pause), shownAt_ + pause) : its;
  }

  void work(Instant now) override {
    now_ = now;
    showDrawings();
    for (PrinterShow& printer : printers_) {
      follow(printer, printer.station().printer().paper(), false);
    }
    server_.work(now);  // requests from browsers may change the states of printers
    showStates(now);
    server_.work(now);
  }

  void tearOff(std::size_t station, const simulator::Paper& paper) override {
    PrinterShow& printer = printers_[station];
    follow(printer, paper, true);
    printer.paper().begin();
  }

  void keep(ReceiptWriter::Done job) override {
    const auto number = static_cast<unsigned>(job.station + 1);
    const auto& dialect = printers_[job.station].station().printer().state().dialect;
    const std::size_t added =
        receipts_.add(std::move(job), {.printer = number, .dialect = dialect}, millisecondsNow());
    const Json latest = receipts_.list();
    for (std::size_t i = std::min(added, latest.size()); i-- > 0;) {
      server_.publish("receipt", inOneLine(latest[i]));
    }
  }

 private:
  void follow(PrinterShow& printer, const simulator::Paper& paper, bool isTornOff) {
    PaperArtist::Print print = printer.paper().follow(paper);
    print.printer = printer.number() - 1;
    print.printed = millisecondsNow();
    print.isTornOff = isTornOff;
    if (printer.paper().isLost()) {
      print.items.clear();
      print.weight = 0;
    }
    if ((print.items.empty() && !isTornOff) || artist_.add(print)) {
      return;
    }
    printer.paper().giveUp();
    const Json event = {{"printer", printer.number()}, {"lost", true}};
    server_.publish("paper", inOneLine(event));
    if (isTornOff) {
      print.items.clear();
      print.weight = 0;
      artist_.add(std::move(print));
    }
  }

  void showDrawings() {
    for (const PaperArtist::Drawing& drawing : artist_.take()) {
      LivePaper& paper = printers_[drawing.printer].paper();
      for (auto& [event, rows] : eventsOf(drawing)) {
        server_.publish("paper", event);
        paper.show(http::eventText("paper", event), rows, drawing.length);
      }
      if (drawing.isTornOff) {
        paper.clear();
        server_.publish("torn", inOneLine({{"printer", drawing.printer + 1}}));
      }
    }
  }

  // Any event that woke the loop may have changed a state, so all states are compared.
  void showStates(Instant now) {
    isDue_ = now - shownAt_ < pause;
    if (isDue_) {
      return;
    }
    shownAt_ = now;
    for (PrinterShow& printer : printers_) {
      if (const auto change = printer.change()) {
        server_.publish("state", *change);
      }
    }
    if (!traffic_.isEmpty()) {
      server_.publish("log", inOneLine(traffic_.take()));
    }
  }

  const std::unique_ptr<Listener> place_;
  std::deque<PrinterShow> printers_;
  ReceiptShelf receipts_;
  TrafficLog traffic_;
  PaperArtist artist_;
  Site site_;
  http::Server server_;
  Instant now_{};
  Instant shownAt_{};
  bool isDue_ = false;
};

}  // namespace

std::unique_ptr<Audience> openWeb(std::unique_ptr<Listener> place, std::list<Station>& stations,
                                  Control& control) {
  try {
    return std::make_unique<Web>(std::move(place), stations, control);
  } catch (const std::exception& error) {
    throw CommandFailure(ExitCode::ExchangeFailed,
                         std::string("the web page cannot be served: ") + error.what());
  }
}

}  // namespace quordalvane::tool
