#include "tools/quorport/CommandLine.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <sstream>
#include <utility>

#include "text/Quoted.h"
#include "tools/quorport/CommandFailure.h"
#include "tools/quorport/HelpTexts.h"
#include "tools/quorport/Joined.h"
#include "tools/quorport/OptionGrammar.h"
#include "tools/quorport/SchemeHelp.h"
#include "tools/quorport/Suggestion.h"

namespace quordalvane::tool {
namespace {

std::vector<std::string> namesOfCommands() {
  std::vector<std::string> names;
  for (const Command& command : everyCommand()) {
    names.emplace_back(command.name);
  }
  return names;
}

std::string eachInQuotes(const std::vector<std::string>& words) {
  std::vector<std::string> quoted;
  quoted.reserve(words.size());
  for (const std::string& word : words) {
    quoted.push_back(inQuotes(word));
  }
  return joined(quoted, ", ");
}

// Returns the question whether the most similar candidate was meant; "" if no candidate is similar.
std::string didYouMean(std::string_view word, const std::vector<std::string>& candidates) {
  const std::string meant = suggestion(word, candidates);
  return meant.empty() ? "" : "; did you mean " + meant + "?";
}

std::string noSuchCommand(const std::string& word) {
  const std::string question = didYouMean(word, namesOfCommands());
  return "there is no command " + inQuotes(word) + (question.empty() ? "." : question) +
         " The commands are: " + joined(namesOfCommands(), ", ");
}

bool hasOption(const CLI::App* parser, const std::string& name) {
  return parser->get_option_no_throw(name) != nullptr;
}

// Finds the reason why the option `word` is refused; its "=value" is ignored. If another command
// has the option, the option was not mistyped, and the result names that command.
std::string noSuchOption(const std::string& word, const std::vector<const CLI::App*>& parsers) {
  const std::string given = word.substr(0, word.find('='));
  const auto owner = std::ranges::find_if(
      parsers, [&given](const CLI::App* parser) { return hasOption(parser, given); });
  if (owner != parsers.end()) {
    return "the option " + inQuotes(given) + " must follow the command " + (*owner)->get_name();
  }
  std::vector<std::string> names;
  for (const CLI::App* const parser : parsers) {
    for (const CLI::Option* const option : parser->get_options()) {
      for (const std::string& name : option->get_lnames()) {
        names.push_back("--" + name);
      }
    }
  }
  return "there is no option " + inQuotes(given) + didYouMean(given, names);
}

// The grammar of the arguments: the parser, and the members that receive the values.
class Grammar {
 public:
  Grammar() {
    app_.footer(schemeHelp() + "\n" + help::statusesAndExamples);
    app_.get_formatter()->label("SUBCOMMAND", "COMMAND");
    app_.set_version_flag("--version", "quorport " QUOR_VERSION, "show the version");
    app_.set_help_flag("-h,--help", "show this text");
    app_.require_subcommand(0, 1);
    addGlobalOptions(app_, options_);
    for (const Command& command : everyCommand()) {
      CLI::App& sub = addCommand(std::string(command.name), std::string(command.help));
      if (command.addOptions != nullptr) {
        command.addOptions(sub, options_);
      }
      const std::string own = sub.get_footer();
      sub.footer(own + (own.empty() ? "" : "\n") + help::commandFooter);
    }
    help_ = &addCommand("help", "show the help of a command");
    help_->add_option("COMMAND", helpOn_,
                      "the command to explain; if none is given, the general help is shown");
  }

  std::variant<Order, std::string> parse(std::vector<std::string> arguments) {
    std::reverse(arguments.begin(), arguments.end());
    try {
      app_.parse(std::move(arguments));
    } catch (const CLI::CallForHelp&) {
      return app_.help();
    } catch (const CLI::CallForVersion&) {
      return app_.version() + "\n";
    } catch (const CLI::ExtrasError&) {
      throw usage(whatIsUnexpected());
    } catch (const CLI::ParseError& error) {
      throw usage(error.what());
    }
    if (help_->parsed()) {
      return helpOn();
    }
    if (chosen() == nullptr) {
      throw usage("a command is missing; the commands are: " + joined(namesOfCommands(), ", "));
    }
    return Order{chosen(), options_};
  }

 private:
  CLI::App& addCommand(const std::string& name, const std::string& help) {
    CLI::App& sub = *app_.add_subcommand(name, help);
    sub.footer("");  // otherwise the command would inherit the program's footer
    sub.group("Commands");
    sub.fallthrough();
    sub.set_help_flag("-h,--help", "show this text");
    return sub;
  }

  std::string helpOn() const {
    const auto parsers = app_.get_subcommands([](const CLI::App*) { return true; });
    const auto found = std::ranges::find(parsers, helpOn_, &CLI::App::get_name);
    if (!helpOn_.empty() && found == parsers.end()) {
      throw usage(noSuchCommand(helpOn_));
    }
    return helpOn_.empty() ? wholeHelp() : (*found)->help("quorport");
  }

  // Returns the general help. CLI::App::help would return the help of the chosen command.
  std::string wholeHelp() const {
    return app_.get_formatter()->make_help(&app_, "quorport", CLI::AppFormatMode::Normal);
  }

  const Command* chosen() const {
    const auto parsed = app_.get_subcommands();
    return parsed.empty() ? nullptr : commandNamed(parsed.front()->get_name());
  }

  std::string whatIsUnexpected() const {
    const std::vector<std::string> words = app_.remaining(true);
    const auto parsed = app_.get_subcommands();
    const auto option = std::ranges::find_if(
        words, [](const auto& word) { return word.size() > 1 && word.starts_with('-'); });
    if (option != words.end()) {
      std::vector<const CLI::App*> parsers = {&app_};
      parsers.insert(parsers.end(), parsed.begin(), parsed.end());
      return noSuchOption(*option, parsers);
    }
    if (parsed.empty()) {
      return noSuchCommand(words.front());
    }
    return "too many arguments for " + parsed.front()->get_name() + ": " + eachInQuotes(words);
  }

  CommandFailure usage(const std::string& what) const {
    const Command* const command = chosen();
    const std::string about = command == nullptr ? "" : " " + std::string(command->name);
    return {ExitCode::Usage, printable(what) + " (quorport" + about + " --help explains more)"};
  }

  Options options_;
  std::string helpOn_;  // the argument of the command `help`; empty without an argument
  CLI::App app_{help::description, "quorport"};
  CLI::App* help_;  // the parser of the command `help`, which `app_` owns
};

// If the arguments name no device, takes the devices from the environment variable, in which blanks
// separate them.
void addDevicesOfEnvironment(Options& options) {
  const char* const value = std::getenv("QUORPORT_DEVICE");
  if (!options.devices.empty() || value == nullptr) {
    return;
  }
  std::istringstream words(value);
  options.devices.assign(std::istream_iterator<std::string>(words), {});
  options.devicesFrom = "QUORPORT_DEVICE";
}

// The library would take the argument after "--name=" as the option's value. This function
// therefore inserts an empty argument as the value.
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
  auto parsed = Grammar().parse(withEmptyValuesApart(arguments));
  if (auto* const order = std::get_if<Order>(&parsed)) {
    addDevicesOfEnvironment(order->options);
  }
  return parsed;
}

const Command* commandNamedIn(const std::vector<std::string>& arguments) {
  const auto end = std::find(arguments.begin(), arguments.end(), "--");
  for (auto argument = arguments.begin(); argument != end; ++argument) {
    if (const Command* const command = commandNamed(*argument)) {
      return command;
    }
  }
  return nullptr;
}

bool askForJson(const std::vector<std::string>& arguments) {
  const auto end = std::find(arguments.begin(), arguments.end(), "--");
  return std::find(arguments.begin(), end, "--json") != end;
}

std::optional<std::string> jobNamedIn(const std::vector<std::string>& arguments) {
  constexpr std::string_view option = "--job";
  std::optional<std::string> job;  // if the name is repeated, the last one counts
  const auto end = std::find(arguments.begin(), arguments.end(), "--");
  for (auto argument = arguments.begin(); argument != end; ++argument) {
    if (argument->starts_with("--job=")) {
      job = argument->substr(option.size() + 1);
    } else if (*argument == option) {
      job = std::next(argument) == end ? "" : *std::next(argument);
    }
  }
  return job;
}

}  // namespace quordalvane::tool
