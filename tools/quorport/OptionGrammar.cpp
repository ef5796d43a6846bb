#include "tools/quorport/OptionGrammar.h"

#include <CLI/CLI.hpp>
#include <initializer_list>
#include <limits>
#include <string_view>
#include <utility>

#include "platform/ProofKind.h"
#include "text/LetterCase.h"
#include "text/Number.h"
#include "text/Quoted.h"
#include "tools/quorport/HelpTexts.h"
#include "tools/quorport/JournalGrammar.h"
#include "tools/quorport/RenderGrammar.h"

namespace quordalvane::tool {
namespace {

constexpr std::uint32_t longestTime = std::numeric_limits<std::uint32_t>::max();
constexpr std::uint32_t highestLogLevel = 63;

struct Range {
  std::uint32_t least;
  std::uint32_t largest;
};

std::uint32_t number(const std::string& text, Range range, const std::string& unit) {
  const auto value = numberIn<std::uint32_t>(text);
  if (!value || *value < range.least || *value > range.largest) {
    throw CLI::ValidationError("takes " + unit + " from " + std::to_string(range.least) + " to " +
                               std::to_string(range.largest) + ", not " + inQuotes(text));
  }
  return *value;
}

ProofKind proof(const std::string& text) {
  if (const auto kind = proofNamed(text)) {
    return *kind;
  }
  throw CLI::ValidationError("takes " + proofNames() + ", not " + inQuotes(text));
}

template <typename Value>
using Choices = std::initializer_list<std::pair<std::string_view, Value>>;

// Returns the value of the choice `name`. `text` is what the user wrote, for the error message.
template <typename Value>
Value chosen(std::string_view name, const std::string& text, Choices<Value> choices) {
  std::string names;
  for (const auto& [choice, value] : choices) {
    if (choice == name) {
      return value;
    }
    names += names.empty() ? "" : choice == (choices.end() - 1)->first ? " or " : ", ";
    names += inQuotes(choice);
  }
  throw CLI::ValidationError("takes " + names + ", not " + inQuotes(text));
}

ZKEmulation emulation(const std::string& text) {
  return chosen<ZKEmulation>(lowerCase(text), text,
                             {{"line", ZKEmulationQuorLine},
                              {"escpos", ZKEmulationESCPOS},
                              {"unknown", ZKEmulationUnknown}});
}

// Returns a function that calls `take` and prefixes the errors of `take` with the option's name.
template <typename Take>
auto prefixedErrors(std::string name, Take take) {
  return [name = std::move(name), take](const auto& value) {
    try {
      take(value);
    } catch (const CLI::ValidationError& error) {
      throw CLI::ValidationError(name + " " + error.what());
    }
  };
}

// Adds an option with a text, which is passed to `take`. If the option is repeated, the last one
// counts.
template <typename Take>
CLI::Option* addText(CLI::App& app, const std::string& names, const std::string& type,
                     const std::string& help, Take take) {
  return app
      .add_option_function<std::string>(names, prefixedErrors(names.substr(names.find("--")), take),
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

}  // namespace

void addGlobalOptions(CLI::App& app, Options& options) {
  addTexts(app, "-d,--device", "SPEC",
           "a link to present as a connected accessory; may be repeated (default: the variable "
           "QUORPORT_DEVICE)",
           options.devices);
  app.add_option("-p,--port-name", options.portName,
                 "BT: for the first accessory, BT:NAME for the one of that name (default BT:)")
      ->type_name("NAME")
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
  app.add_option("-s,--settings", options.settings, "the port's settings")
      ->type_name("TEXT")
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
  addTime(app, "-t,--timeout", "the input/output time-out (default 10000)", options.timeout);
  addText(app, "-e,--emulation", "NAME",
          "the printer's command language: line, escpos or unknown (default: line)",
          [&options](const std::string& text) { options.emulation = emulation(text); });
  app.add_option(
         "--log", options.log,
         "write the diagnostic records to this file, each as a line with a JSON object; - is "
         "standard error")
      ->type_name("FILE")
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
  app.add_option_function<std::vector<std::string>>(
         "--log-level",
         prefixedErrors("--log-level",
                        [&options](const std::vector<std::string>& texts) {
                          options.logLevels.clear();
                          for (const std::string& text : texts) {
                            options.logLevels.insert(static_cast<std::int32_t>(
                                number(text, {0, highestLogLevel}, "a level")));
                          }
                        }),
         "write the records of this level; may be repeated (default 0)")
      ->type_name("N")
      ->allow_extra_args(false);
  app.add_flag("--json", options.json, "print the result as one JSON object");
}

void addStatusOptions(CLI::App& app, Options& all) {
  StatusOptions& options = all.status;
  addText(app, "--level", "N",
          "the level that the log shows for the status request; it has no other effect (default 0)",
          [&options](const std::string& text) {
            options.level = number(text, {0, longestTime}, "a number");
          });
  app.add_flag("-v,--verbose", options.verbose, "show every field, even if it is empty");
}

void addPrintOptions(CLI::App& app, Options& all) {
  PrintOptions& options = all.print;
  CLI::Option* const file =
      app.add_option("FILE", options.file, "the file to print; - is standard input")->required();
  addText(app, "--proof", "NAME",
          "how the printer confirms the job: " + proofNames() +
              " (default: the proof that the device names, otherwise auto, which asks the printer)",
          [&options](const std::string& text) { options.proof = proof(text); });
  app.add_flag_callback(
      "--unchecked", [&options] { options.proof = ProofKind::None; },
      "print without a proof, like --proof none: the printer is asked neither before nor after the "
      "job, and the outcome is unconfirmed at best");
  addTime(app, "--end-timeout",
          "the time to wait for the confirmation (default: the input/output time-out)",
          options.endTimeout);
  addTime(app, "--hold-print-timeout",
          "the time to wait until somebody takes the paper from the exit",
          options.holdPrintTimeout);
  addText(app, "--receipt", "FILE.png|.txt",
          "write to this file the receipt that the virtual printer has printed",
          [&options](const std::string& text) {
            if (!text.ends_with(".png") && !text.ends_with(".txt")) {
              throw CLI::ValidationError("takes a name that ends in .png or .txt, not " +
                                         inQuotes(text));
            }
            options.receipt = text;
          });
  addJournalOptions(app, options);
  addRenderOptions(app, options.render, *file);
  app.footer(help::printFooter);
}

void addDoctorOptions(CLI::App& app, Options& all) {
  DoctorOptions& options = all.doctor;
  app.add_option(
         "--bundle", options.bundle,
         "write a report without print data to this new file: versions, options, findings, the "
         "printer's status and diagnostic records")
      ->type_name("FILE")
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
  app.footer(help::doctorFooter);
}

void addMonitorOptions(CLI::App& app, Options& all) {
  MonitorOptions& options = all.monitor;
  addText(app, "--interval", "MS", "the pause between two status requests (default 1000)",
          [&options](const std::string& text) {
            options.interval = number(text, {100, longestTime}, "milliseconds");
          });
  addText(app, "--count", "N",
          "end after this number of status requests (default: when interrupted)",
          [&options](const std::string& text) {
            options.count = number(text, {1, longestTime}, "a number");
          });
  app.footer(help::monitorFooter);
}

void addSimulateOptions(CLI::App& app, Options& all) {
  SimulateOptions& options = all.simulate;
  addTexts(
      app, "--listen", "SPEC",
      "tcp:, tcp:PORT, tcp:HOST:PORT, unix:PATH or pty: (without PORT or with 0, any free port; "
      "without HOST, only this machine can connect). Add ,name=NAME to name the printer. May be "
      "repeated, once for each printer",
      options.listen)
      ->required();
  addText(
      app, "--hosts", "one|turns|refuse",
      "if a host is already connected, a second host waits until the first has disconnected (one, "
      "the default), prints between the first host's jobs (turns), or is refused (refuse)",
      [&options](const std::string& text) {
        options.hosts = chosen<HostRule>(
            text, text,
            {{"one", HostRule::One}, {"turns", HostRule::Turns}, {"refuse", HostRule::Refuse}});
      });
  addTexts(app, "--set", "KEY=VALUE",
           "set a state or a fault of the printer, with a key that a virtual: device takes; may be "
           "repeated",
           options.settings);
  app.add_option("--receipts", options.receipts,
                 "write the receipt of each job into this folder, as text and as a picture")
      ->type_name("FOLDER");
  addText(app, "--per", "cut|job|connection",
          "begin a new receipt after each cut, job or connection (default: job)",
          [&options](const std::string& text) {
            options.per = chosen<ReceiptPer>(text, text,
                                             {{"cut", ReceiptPer::Cut},
                                              {"job", ReceiptPer::Job},
                                              {"connection", ReceiptPer::Connection}});
          });
  app.add_flag(
      "--strict", options.strict,
      "end with exit status 1 if a job contained an unknown command, an incomplete command, or a "
      "byte that has no character in the selected code page");
  app.add_option("--control", options.control, "accept control lines on this socket as well")
      ->type_name("unix:PATH");
  app.add_option(
         "--web", options.web,
         "show the printers in a browser, at the address that is written to standard output; "
         "without HOST, only this machine can connect")
      ->type_name("[HOST:]PORT");
  app.footer(help::simulateFooter);
}

}  // namespace quordalvane::tool
