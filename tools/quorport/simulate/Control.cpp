#include "tools/quorport/simulate/Control.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <utility>
#include <vector>

#include "simulator/Faults.h"
#include "simulator/PrinterState.h"
#include "text/Hex.h"
#include "text/Quoted.h"

namespace quordalvane::tool {
namespace {

using Pairs = std::vector<std::pair<std::string, std::string>>;

constexpr auto everyRequest =
    "a line must be one of {\"set\": {KEY: VALUE, ...}}, {\"get\": \"state\"}, "
    "{\"fault\": {NAME: VALUE, ...}}, {\"clear\": \"faults\"}, {\"tear\": \"paper\"}, "
    "{\"print\": \"test\"} and {\"quit\": true}";

[[noreturn]] void refuse(const std::string& why) {
  throw std::invalid_argument(why);
}

std::string shortened(const Json& value) {
  return printable(inOneLine(value).substr(0, 60));
}

// Converts a value to the text form that the printer's settings and faults expect.
std::string textOf(const std::string& key, const Json& value) {
  if (value.is_string()) {
    return value.get<std::string>();
  }
  if (value.is_boolean() || value.is_number()) {
    return value.dump();
  }
  refuse(key + " takes true, false, a number or a text, not " + shortened(value));
}

// Refuses a value of the wrong JSON type. On a command line all types look alike, but in JSON they
// differ.
void checkKind(const std::string& key, const Json& value) {
  if (simulator::flagNamed(key) && !value.is_boolean()) {
    refuse(key + " takes true or false, not " + shortened(value));
  }
  const auto forms = simulator::settingForms();
  const bool isText = std::any_of(forms.begin(), forms.end(), [&](const auto& form) {
    return form.key == key && form.kind == simulator::SettingForm::Kind::Text;
  });
  if (isText && !value.is_string()) {
    refuse(key + " takes a text, not " + shortened(value));
  }
}

const Json& objectIn(const Json& request, const char* key) {
  const Json& object = request.front();
  if (!object.is_object() || object.empty()) {
    refuse(std::string(key) + " takes an object of names and values, not " + shortened(object));
  }
  return object;
}

void checkValue(const Json& request, const Json& only) {
  if (request.front() != only) {
    refuse(request.begin().key() + " takes " + only.dump() + ", not " + shortened(request.front()));
  }
}

Json stateOf(const simulator::VirtualPrinter& printer) {
  const simulator::PrinterState& state = printer.state();
  Json json;
  for (std::size_t i = 0; i < simulator::flagCount; ++i) {
    json[simulator::flagNames[i]] = state.flag(static_cast<simulator::Flag>(i));
  }
  json["firmware"] = state.firmware();
  json["dip1"] = hexText(state.dipBanks[0]);
  json["dip2"] = hexText(state.dipBanks[1]);
  json["speed"] = state.bytesPerSecond;
  json["profile"] = printable(state.profile);
  json["proofs"] = state.dialect.proofs.text();
  json["etbCounter"] = state.etbCounter;
  json["buffered"] = printer.buffered();
  json["printedBytes"] = printer.printedBytes();
  return json;
}

// Converts the text of a setting to its JSON type: a boolean, a number or a string.
Json valueOf(const simulator::SettingForm& form, const std::string& text) {
  switch (form.kind) {
    case simulator::SettingForm::Kind::Flag:
      return text == "true";
    case simulator::SettingForm::Kind::Number:
      return Json::parse(text);
    case simulator::SettingForm::Kind::Text:
      break;
  }
  return printable(text);
}

Json settingsOf(const simulator::PrinterState& state) {
  Json json = Json::object();
  for (const simulator::SettingForm& form : simulator::settingForms()) {
    json[std::string(form.key)] = valueOf(form, state.get(form.key).value_or(""));
  }
  return json;
}

Json faultsOf(const Links& links) {
  Json json = Json::array();
  for (const simulator::Fault& fault : links.faults()) {
    json.push_back({{"name", fault.name}, {"value", printable(fault.given)}});
  }
  return json;
}

Json countersOf(const Counters& counters, std::uint64_t printedBytes) {
  return {{"jobs", counters.jobs},
          {"cuts", counters.cuts},
          {"drawer", counters.drawer},
          {"beeps", counters.beeps},
          {"bytes", printedBytes}};
}

}  // namespace

void Control::add(const std::string& name, simulator::VirtualPrinter& printer, Links& links,
                  Deeds deeds) {
  printers_.push_back({name, printer, links, std::move(deeds)});
}

std::string Control::answer(std::string_view line, simulator::Instant now,
                            std::optional<std::size_t> only) {
  Json answer;
  try {
    answer = obey(Json::parse(line), now, only);
  } catch (const Json::parse_error& error) {
    const std::string why = error.what();
    answer = {{"ok", false},
              {"error", "the line is not JSON (" + printable(why.substr(why.find(']') + 2)) +
                            "); " + everyRequest}};
  } catch (const std::exception& error) {
    answer = {{"ok", false}, {"error", printable(error.what())}};
  }
  std::string text = inOneLine(answer);
  if (listener_) {
    listener_(line, text, only);
  }
  return text;
}

// Returns the printers to which the request applies: those with the name in the key `printer`, or
// all printers if the key is missing. If `only` is not empty, printers with other numbers are
// excluded. Throws std::invalid_argument if no printer is left. Removes the key from the request.
Control::Printers Control::printersIn(Json& request, std::optional<std::size_t> only) {
  Printers chosen;
  const bool isNamed = request.is_object() && request.contains("printer");
  const Json name = isNamed ? request["printer"] : Json();
  std::string names;
  for (Printer& printer : printers_) {
    const bool isMeant = !only || &printer == &printers_.at(*only);
    if (isMeant && (!isNamed || name == printer.name)) {
      chosen.push_back(&printer);
    }
    names += !isMeant ? "" : (names.empty() ? "" : ", ") + inQuotes(printer.name);
  }
  if (chosen.empty()) {
    refuse("there is no printer " + shortened(name) + "; the printers are " + names);
  }
  if (isNamed) {
    request.erase("printer");
  }
  return chosen;
}

Json Control::obey(Json request, simulator::Instant now, std::optional<std::size_t> only) {
  const Printers printers = printersIn(request, only);
  if (!request.is_object() || request.size() != 1) {
    refuse(everyRequest);
  }
  Json answer = {{"ok", true}};
  if (request.begin().key() == "get") {
    const Json& what = request.front();
    const auto first = static_cast<std::size_t>(printers[0] - printers_.data());
    printers[0]->printer.advance(now);
    answer[what.is_string() ? what.get<std::string>() : ""] =
        get(what.is_string() ? what.get<std::string>() : shortened(what), first);
  } else {
    change(printers, request, now);
  }
  return answer;
}

Json Control::get(const std::string& what, std::size_t printer) const {
  const Printer& asked = printers_.at(printer);
  if (what == "state") {
    return stateOf(asked.printer);
  }
  if (what == "settings") {
    return settingsOf(asked.printer.state());
  }
  if (what == "faults") {
    return faultsOf(asked.links);
  }
  if (what == "counters") {
    return countersOf(asked.deeds.counters(), asked.printer.printedBytes());
  }
  refuse("the key \"get\" takes \"state\", \"settings\", \"faults\" or \"counters\", not " +
         inQuotes(what));
}

void Control::change(const Printers& printers, const Json& request, simulator::Instant now) {
  const std::string what = request.begin().key();
  if (what == "set") {
    set(printers, objectIn(request, "set"), now);
  } else if (what == "fault") {
    addFaults(printers, objectIn(request, "fault"), now);
  } else if (what == "clear") {
    checkValue(request, "faults");
    for (Printer* printer : printers) {
      printer->links.clear(now);
    }
  } else if (what == "tear") {
    checkValue(request, "paper");
    for (Printer* printer : printers) {
      printer->printer.advance(now);
      printer->deeds.tearOff();
    }
  } else if (what == "print") {
    checkValue(request, "test");
    for (Printer* printer : printers) {
      printer->deeds.printTest();
    }
  } else if (what == "quit") {
    checkValue(request, true);
    quitWanted_ = true;
  } else {
    refuse("there is no request " + inQuotes(what) + "; " + everyRequest);
  }
}

void Control::set(const Printers& printers, const Json& settings, simulator::Instant now) {
  Pairs pairs;
  for (const auto& [key, value] : settings.items()) {
    checkKind(key, value);
    pairs.emplace_back(key, textOf(key, value));
  }
  for (const Printer* printer : printers) {
    simulator::PrinterState tried = printer->printer.state();
    for (const auto& [key, value] : pairs) {
      tried.set(key, value);
    }
  }
  for (Printer* printer : printers) {
    for (const auto& [key, value] : pairs) {
      printer->printer.set(key, value, now);
    }
  }
}

void Control::addFaults(const Printers& printers, const Json& faults, simulator::Instant now) {
  simulator::Faults parsed;
  for (const auto& [name, value] : faults.items()) {
    parsed.add(name, textOf(name, value));
  }
  for (Printer* printer : printers) {
    printer->links.add(parsed, now);
  }
}

}  // namespace quordalvane::tool
