#include "tools/quorport/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <limits>
#include <map>
#include <utility>

#include "backends/Schemes.h"
#include "tools/quorport/Joined.h"

namespace quordalvane::tool {
namespace {

constexpr std::uint32_t longestTime = std::numeric_limits<std::uint32_t>::max();
constexpr std::uint32_t highestLogLevel = 63;

constexpr auto description =
    "Talks to receipt printers: asks for their state, prints, and says honestly what became of it.";

constexpr auto statusesAndExamples =
    "Exit status: 0 done, 1 the exchange with the printer failed, 2 usage, 3 no accessory matched "
    "or\n"
    "it could not be opened, 4 the printer is not ready, 5 the link was lost, 6 unconfirmed,\n"
    "129 hung up, 130 interrupted.\n"
    "\n"
    "  quorport print receipt.txt                             on the printer that is built in\n"
    "  quorport -d tcp:192.0.2.10:9100 status\n"
    "  quorport -d tcp:192.0.2.10:9100 doctor                 when something does not work\n"
    "  quorport simulate --listen tcp:127.0.0.1:9100\n";

std::string schemeHelp(const Scheme& scheme) {
  constexpr std::size_t column = 18;
  std::string line = "  " + std::string(scheme.name) + ":" + std::string(scheme.place);
  line += std::string(column > line.size() ? column - line.size() : 1, ' ');
  line += std::string(scheme.about) + "\n";
  for (const SchemeKey& key : scheme.keys) {
    line +=
        std::string(column, ' ') + std::string(key.name) + ": " + std::string(key.values) + "\n";
  }
  if (!scheme.moreKeys.empty()) {
    line += std::string(column, ' ') + std::string(scheme.moreKeys) + "\n";
  }
  return line;
}

std::string footer() {
  std::string text = "A SPEC is one of these, then any number of ,key=value:\n";
  for (const Scheme* const scheme : schemes()) {
    text += schemeHelp(*scheme);
  }
  return text +
         "Every one takes the keys name, serial, model, manufacturer, protocol (repeatable), "
         "address "
         "and\nid. A host alone is tcp:HOST:9100; a path such as /dev/ttyUSB0 needs no "
         "scheme.\n\n" +
         statusesAndExamples;
}

constexpr auto printFooter =
    "The outcome is one of\n"
    "  printed      the printer confirmed that it printed all of this job (exit status 0)\n"
    "  unconfirmed  bytes were handed over, and nothing proves that they were printed: sending\n"
    "               them again may print twice (6)\n"
    "  refused      nothing of the job was sent (1, 3, 4 or 5)\n";

constexpr auto commandFooter =
    "The global options, such as --device and --json, are taken here, too: quorport --help";

constexpr auto doctorFooter =
    "Every --device that is given is looked at, and nothing is printed. Without one there is\n"
    "nothing to look at, and the exit status is 2. A serial printer that does not answer is asked\n"
    "at every other speed, too, which may make it print stray characters.\n"
    "The exit status is 0 if all is well, else that of the first thing found: 1, 3, 4 or 5.\n";

constexpr auto monitorFooter =
    "Each change is one line on standard output, with --json one JSON object: time, ok (whether\n"
    "the printer answered), state (ready, not-ready, no-answer, link-lost or unreachable), text,\n"
    "status (null if there is none), changed, the names of its fields, and error where ok is "
    "false.\n"
    "A lost link is opened again. The printer is kept for itself meanwhile, where it serves one\n"
    "host at a time. With --count the exit status tells how the last look came out: 0, 1, 3 or "
    "5.\n";

constexpr auto simulateFooter =
    "Where it listens is the first line on standard output: the word listening, a blank, and a\n"
    "SPEC for --device. A terminal that was dropped comes back under another path, which standard\n"
    "error is told in the same words.\n"
    "On standard input and on the control socket it takes one JSON object a line and answers one:\n"
    "  {\"set\": {\"coverOpen\": true, \"speed\": 200}}   {\"get\": \"state\"}   {\"quit\": true}\n"
    "  {\"fault\": {\"late-reply\": 300}}               {\"clear\": \"faults\"}\n";

struct Range {
  std::uint32_t least;
  std::uint32_t largest;
};

std::uint32_t number(const std::string& text, Range range, const std::string& unit) {
  std::uint32_t value = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (error != std::errc() || stop != end || value < range.least || value > range.largest) {
    throw CLI::ValidationError("takes " + unit + " from " + std::to_string(range.least) + " to " +
                               std::to_string(range.largest) + ", not " + inQuotes(text));
  }
  return value;
}

ZKEmulation emulation(const std::string& text) {
  static const std::map<std::string, ZKEmulation> names = {
      {"line", ZKEmulationQuorLine},
      {"escpos", ZKEmulationESCPOS},
      {"unknown", ZKEmulationUnknown},
  };
  const auto found = names.find(text);
  if (found == names.end()) {
    throw CLI::ValidationError("takes line, escpos or unknown, not " + inQuotes(text));
  }
  return found->second;
}

// A `take` of which what it finds wrong with a value is told behind the option's name.
template <typename Take>
auto toldBehind(std::string name, Take take) {
  return [name = std::move(name), take](const auto& value) {
    try {
      take(value);
    } catch (const CLI::ValidationError& error) {
      throw CLI::ValidationError(name + " " + error.what());
    }
  };
}

// Adds an option that takes a text and hands it to `take`; of several the last one counts.
template <typename Take>
CLI::Option* addText(CLI::App& app, const std::string& names, const std::string& type,
                     const std::string& help, Take take) {
  return app
      .add_option_function<std::string>(names, toldBehind(names.substr(names.find("--")), take),
                                        help)
      ->type_name(type)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
}

template <typename Time>
void addTime(CLI::App& app, const std::string& names, const std::string& help, Time& time) {
  addText(app, names, "MS", help, [&time](const std::string& text) {
    time = number(text, {0, longestTime}, "milliseconds");
  });
}

CLI::Option* addTexts(CLI::App& app, const std::string& names, const std::string& type,
                      const std::string& help, std::vector<std::string>& texts) {
  return app.add_option(names, texts, help)->type_name(type)->allow_extra_args(false);
}

void addGlobalOptions(CLI::App& app, Options& options) {
  addTexts(app, "-d,--device", "SPEC",
           "a link to present as a connected accessory; may be repeated (default virtual:)",
           options.devices);
  app.add_option("-p,--port-name", options.portName,
                 "BT: for the first accessory, BT:NAME for a certain one (default BT:)")
      ->type_name("NAME")
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
  app.add_option("-s,--settings", options.settings, "the port's settings")
      ->type_name("TEXT")
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
  addTime(app, "-t,--timeout", "the input/output time-out (default 10000)", options.timeout);
  addText(app, "-e,--emulation", "NAME", "line, escpos or unknown (default line)",
          [&options](const std::string& text) { options.emulation = emulation(text); });
  app.add_option("--log", options.log,
                 "write the diagnostic records to this file, a JSON object a line; - is standard "
                 "error")
      ->type_name("FILE")
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
  app.add_option_function<std::vector<std::string>>(
         "--log-level",
         toldBehind("--log-level",
                    [&options](const std::vector<std::string>& texts) {
                      options.logLevels.clear();
                      for (const std::string& text : texts) {
                        options.logLevels.insert(static_cast<std::int32_t>(
                            number(text, {0, highestLogLevel}, "a level")));
                      }
                    }),
         "a level of records that is wanted; may be repeated (default 0)")
      ->type_name("N")
      ->allow_extra_args(false);
  app.add_flag("--json", options.json, "print the result as one JSON object");
}

void addStatusOptions(CLI::App& app, Options& all) {
  StatusOptions& options = all.status;
  addText(app, "--level", "N", "the level of the status, which is only logged (default 0)",
          [&options](const std::string& text) {
            options.level = number(text, {0, longestTime}, "a number");
          });
  app.add_flag("-v,--verbose", options.verbose, "show every field, also those that say nothing");
}

void addPrintOptions(CLI::App& app, Options& all) {
  PrintOptions& options = all.print;
  app.add_option("FILE", options.file, "what to print; - is standard input")->required();
  app.add_flag("--unchecked", options.unchecked,
               "send without a checked block: the printer is not asked before or after, and the "
               "outcome is unconfirmed at best");
  addTime(app, "--end-timeout",
          "how long to wait for the confirmation (default: the input/output time-out)",
          options.endTimeout);
  addTime(app, "--hold-print-timeout", "how long to wait for paper to be taken from the exit",
          options.holdPrintTimeout);
  addText(app, "--receipt", "FILE.png|.txt", "show what came out, on virtual: only",
          [&options](const std::string& text) {
            if (!text.ends_with(".png") && !text.ends_with(".txt")) {
              throw CLI::ValidationError("takes a name that ends in .png or .txt, not " +
                                         inQuotes(text));
            }
            options.receipt = text;
          });
  app.footer(printFooter);
}

void addDoctorOptions(CLI::App& app, Options& all) {
  DoctorOptions& options = all.doctor;
  app.add_option("--bundle", options.bundle,
                 "write versions, findings, status and diagnostic records to this new file, which "
                 "can be sent on")
      ->type_name("FILE")
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
  app.footer(doctorFooter);
}

void addMonitorOptions(CLI::App& app, Options& all) {
  MonitorOptions& options = all.monitor;
  addText(app, "--interval", "MS", "the pause between two looks (default 1000)",
          [&options](const std::string& text) {
            options.interval = number(text, {100, longestTime}, "milliseconds");
          });
  addText(app, "--count", "N", "end after so many looks (default: when interrupted)",
          [&options](const std::string& text) {
            options.count = number(text, {1, longestTime}, "a number");
          });
  app.footer(monitorFooter);
}

void addSimulateOptions(CLI::App& app, Options& all) {
  SimulateOptions& options = all.simulate;
  app.add_option("--listen", options.listen,
                 "tcp:, tcp:PORT or tcp:HOST:PORT (none or 0: any free port; this machine alone "
                 "unless a HOST says otherwise), unix:PATH, or pty:")
      ->type_name("SPEC")
      ->required();
  addTexts(app, "--set", "KEY=VALUE",
           "the printer's state or a fault, as on virtual: devices; may be repeated",
           options.settings);
  app.add_option("--receipts", options.receipts,
                 "write what comes out for each job into this folder, as text and as a picture")
      ->type_name("FOLDER");
  app.add_option("--control", options.control, "take control lines on this socket, too")
      ->type_name("unix:PATH");
  app.footer(simulateFooter);
}

constexpr Command commands[] = {
    {"list", "show the accessories, and which one the port name chooses", list},
    {"status", "ask for the printer's status", status, addStatusOptions},
    {"online", "ask whether the printer is ready to print", online},
    {"print", "print a file and tell honestly what became of it", print, addPrintOptions,
     CommandKind::Printing},
    {"cancel", "make the printer drop what it has received and not yet printed", cancel},
    {"firmware", "ask for the firmware text", firmware},
    {"dipswitch", "ask for both banks of DIP switches", dipswitch},
    {"button-security", "ask for the button-security time-out", buttonSecurity},
    {"disconnect", "make the printer's Bluetooth module drop the link", disconnect},
    {"monitor", "show the printer's state and every change of it, until stopped", monitor,
     addMonitorOptions},
    {"doctor", "find out what is wrong with the devices, and what to do about it", doctor,
     addDoctorOptions},
    {"simulate", "serve a virtual printer until stopped", simulate, addSimulateOptions,
     CommandKind::Service},
};

// The parser of arguments, with places for what it finds.
class Grammar {
 public:
  Grammar() {
    app_.footer(footer());
    app_.get_formatter()->label("SUBCOMMAND", "COMMAND");
    app_.set_version_flag("--version", "quorport " QUOR_VERSION, "show the version");
    app_.set_help_flag("-h,--help", "show this text");
    app_.require_subcommand(0, 1);
    addGlobalOptions(app_, options_);
    for (const Command& command : commands) {
      CLI::App& sub = *app_.add_subcommand(std::string(command.name), std::string(command.help));
      sub.group("Commands");
      sub.fallthrough();
      sub.set_help_flag("-h,--help", "show this text");
      if (command.addOptions != nullptr) {
        command.addOptions(sub, options_);
      }
      sub.footer(sub.get_footer() + "\n" + commandFooter);
    }
  }

  std::variant<Order, std::string> parse(std::vector<std::string> arguments) {
    std::reverse(arguments.begin(), arguments.end());
    try {
      app_.parse(std::move(arguments));
    } catch (const CLI::CallForHelp&) {
      return app_.help();
    } catch (const CLI::CallForVersion&) {
      return app_.version() + "\n";
    } catch (const CLI::ExtrasError& error) {
      throw usage(chosen() == nullptr ? noSuchCommand(error) : error.what());
    } catch (const CLI::ParseError& error) {
      throw usage(error.what());
    }
    if (chosen() == nullptr) {
      throw usage("a command is missing: it is one of " + everyCommand());
    }
    return Order{chosen(), options_};
  }

 private:
  const Command* chosen() const {
    const auto parsed = app_.get_subcommands();
    const auto* const found =
        std::find_if(std::begin(commands), std::end(commands), [&](const Command& command) {
          return !parsed.empty() && parsed.front()->get_name() == command.name;
        });
    return found == std::end(commands) ? nullptr : found;
  }

  static std::string noSuchCommand(const CLI::ExtrasError& error) {
    return std::string(error.what()) + "; a command is one of " + everyCommand();
  }

  static std::string everyCommand() {
    std::vector<std::string> names;
    for (const Command& command : commands) {
      names.emplace_back(command.name);
    }
    return joined(names, ", ");
  }

  Failure usage(const std::string& what) const {
    const Command* const command = chosen();
    const std::string about = command == nullptr ? "" : " " + std::string(command->name);
    return {ExitCode::Usage, printable(what) + " (quorport" + about + " --help tells more)"};
  }

  Options options_;
  CLI::App app_{description, "quorport"};
};

// The library takes the argument behind "--name=" for the value.
std::vector<std::string> withEmptyValuesApart(const std::vector<std::string>& arguments) {
  std::vector<std::string> result;
  bool onlyPlain = false;
  for (const std::string& argument : arguments) {
    onlyPlain = onlyPlain || argument == "--";
    if (!onlyPlain && argument.starts_with("--") && argument.ends_with('=')) {
      result.push_back(argument.substr(0, argument.size() - 1));
      result.emplace_back();
    } else {
      result.push_back(argument);
    }
  }
  return result;
}

}  // namespace

std::variant<Order, std::string> parseCommandLine(const std::vector<std::string>& arguments) {
  return Grammar().parse(withEmptyValuesApart(arguments));
}

bool askForJson(const std::vector<std::string>& arguments) {
  const auto end = std::find(arguments.begin(), arguments.end(), "--");
  return std::find(arguments.begin(), end, "--json") != end;
}

}  // namespace quordalvane::tool
