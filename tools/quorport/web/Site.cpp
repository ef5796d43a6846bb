#include "tools/quorport/web/Site.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

#include "text/Number.h"
#include "tools/quorport/web/Forms.h"
#include "tools/quorport/web/PageFiles.h"

namespace quordalvane::tool {
namespace {

using http::Answer;

constexpr auto receiptFolder = "receipts/";
constexpr auto pageFolder = "page/";
constexpr auto printerFolder = "api/printers/";
constexpr auto controlName = "/control";

std::optional<std::uint64_t> numberOf(const http::Request& request, const std::string& key) {
  const auto found = request.query.find(key);
  return found == request.query.end() ? std::nullopt : numberIn<std::uint64_t>(found->second);
}

Answer inJson(const Json& json) {
  return http::answerWith(inOneLine(json));
}

Answer notThere() {
  return http::refusal(404, "there is nothing at this address");
}

Answer pageFile(std::string_view name) {
  for (const PageFile& file : pageFiles()) {
    if (file.name == name) {
      return http::answerWith(std::string(file.content), std::string(typeOf(name)));
    }
  }
  return notThere();
}

}  // namespace

Answer Site::answer(const http::Request& request, const http::EventLog& events,
                    simulator::Instant now) {
  return request.method == "POST" ? post(request, now) : get(request, events);
}

Answer Site::get(const http::Request& request, const http::EventLog& events) const {
  const std::string& path = request.path;
  if (path.empty()) {
    return pageFile("index.html");
  }
  if (path.starts_with(pageFolder)) {
    return pageFile(path.substr(std::string_view(pageFolder).size()));
  }
  if (path.starts_with(receiptFolder)) {
    return receipt(request);
  }
  if (path == "api/forms") {
    return inJson(everyForm());
  }
  if (path == "api/printers") {
    return inJson(snapshot());
  }
  if (path == "api/receipts") {
    return inJson({{"receipts", receipts_.list(numberOf(request, "before"))}});
  }
  return path == "api/events" ? readEvents(request, events) : notThere();
}

Answer Site::post(const http::Request& request, simulator::Instant now) {
  const std::string_view path = request.path;
  if (path == "api/control") {
    return http::answerWith(control_.answer(request.body, now));
  }
  if (!path.starts_with(printerFolder) || !path.ends_with(controlName)) {
    return notThere();
  }
  const std::size_t begin = std::string_view(printerFolder).size();
  const std::size_t end = path.size() - std::string_view(controlName).size();
  const auto printer =
      end > begin ? numberIn<std::uint64_t>(path.substr(begin, end - begin)) : std::nullopt;
  if (!printer || *printer < 1 || *printer > printers_.size()) {
    return notThere();
  }
  return http::answerWith(control_.answer(request.body, now, *printer - 1));
}

// receipts/ID is the page that shows the receipt; receipts/ID.KIND is the receipt itself.
Answer Site::receipt(const http::Request& request) const {
  const std::string name = request.path.substr(std::string_view(receiptFolder).size());
  const std::size_t dot = std::min(name.find('.'), name.size());
  const auto id = numberIn<std::uint64_t>(std::string_view(name).substr(0, dot));
  if (!id) {
    return notThere();
  }
  if (dot == name.size()) {
    return pageFile("receipt.html");
  }
  const std::string kind = name.substr(dot + 1);
  if (kind == "json") {
    const Json json = receipts_.describe(*id, numberOf(request, "from").value_or(0));
    return json.is_null() ? notThere() : inJson(json);
  }
  const auto from = numberOf(request, "from");
  const http::Text file =
      kind == "png" && from ? receipts_.piece(*id, *from) : receipts_.file(*id, kind);
  if (file == nullptr) {
    return notThere();
  }
  return {.type = std::string(typeOf("." + kind)), .body = file};
}

Json Site::snapshot() const {
  Json printers = Json::array();
  for (const PrinterShow& printer : printers_) {
    printers.push_back(printer.describe());
  }
  return {
      {"printers", std::move(printers)}, {"receipts", receipts_.list()}, {"version", QUOR_VERSION}};
}

// A reader that reconnects soon enough gets only the events that it missed.
Answer Site::readEvents(const http::Request& request, const http::EventLog& events) const {
  Answer answer{.type = "text/event-stream", .body = nullptr, .events = Answer::Events()};
  if (request.lastEvent && events.holdsAllAfter(*request.lastEvent)) {
    answer.events->after = *request.lastEvent;
    return answer;
  }
  answer.events->after = events.latest();
  auto& first = answer.events->first;
  first.push_back(std::make_shared<const std::string>("retry: 500\n\n"));
  first.push_back(http::eventText("snapshot", inOneLine(snapshot())));
  for (PrinterShow& printer : printers_) {
    const auto& paper = printer.paper().events();
    first.insert(first.end(), paper.begin(), paper.end());
  }
  first.push_back(http::eventText("log", inOneLine(traffic_.kept())));
  return answer;
}

}  // namespace quordalvane::tool
