#include "tools/printer-app/Settings.h"

#include <algorithm>

#include "backends/SpecText.h"
#include "text/Number.h"
#include "text/Quoted.h"

namespace quordalvane::printer_app {
namespace {

struct Option {
  std::string_view name;
  std::string_view values;  // the valid values, as a text for people
  bool (*set)(Settings& settings, std::string_view value);  // returns false for an invalid value
};

template <typename Number>
bool setNumber(Number& number, std::string_view text, int most) {
  const auto found = numberIn<int>(text);
  const bool isInRange = found && *found >= 1 && *found <= most;
  number = isInRange ? Number(*found) : number;
  return isInRange;
}

bool setLevel(pappl_loglevel_t& level, std::string_view name) {
  constexpr std::pair<std::string_view, pappl_loglevel_t> levels[] = {
      {"debug", PAPPL_LOGLEVEL_DEBUG},
      {"info", PAPPL_LOGLEVEL_INFO},
      {"warn", PAPPL_LOGLEVEL_WARN},
      {"error", PAPPL_LOGLEVEL_ERROR},
  };
  const auto* const found =
      std::ranges::find(levels, name, [](const auto& one) { return one.first; });
  const bool isKnown = found != std::end(levels);
  level = isKnown ? found->second : level;
  return isKnown;
}

template <auto member>
bool setText(Settings& settings, std::string_view text) {
  settings.*member = text;
  return !text.empty();
}

constexpr Option known[] = {
    {"listen-hostname", "an address, or * for all", setText<&Settings::host>},
    {"server-port", "a port from 1 to 65535",
     [](Settings& settings, std::string_view text) {
       return setNumber(settings.port, text, 65535);
     }},
    {"state-directory", "a folder", setText<&Settings::folder>},
    {"password-file", "a file", setText<&Settings::passwordFile>},
    {"upload-timeout", "seconds, from 1 to 86400",
     [](Settings& settings, std::string_view text) {
       return setNumber(settings.uploadTimeout, text, 86400);
     }},
    {"log-file", "a file", setText<&Settings::logFile>},
    {"log-level", "debug, info, warn or error",
     [](Settings& settings, std::string_view text) { return setLevel(settings.logLevel, text); }},
};

std::string knownNames() {
  std::string names;
  for (const Option& option : known) {
    names.append(names.empty() ? "" : ", ").append(option.name);
  }
  return names;
}

}  // namespace

Settings settingsIn(int count, const cups_option_t* options) {
  Settings settings;
  for (const cups_option_t* given = options; given != options + count; ++given) {
    const auto* const option = std::ranges::find(known, given->name, &Option::name);
    if (option == std::end(known)) {
      spec::refuse("the server has no option " + inQuotes(given->name) + "; its options are " +
                   knownNames());
    }
    if (!option->set(settings, given->value)) {
      spec::refuse(std::string(option->name) + "=" + inQuotes(given->value) + ": takes " +
                   std::string(option->values));
    }
  }
  return settings;
}

}  // namespace quordalvane::printer_app
