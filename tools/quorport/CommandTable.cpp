#include <algorithm>
#include <iterator>

#include "tools/quorport/Commands.h"
#include "tools/quorport/JournalGrammar.h"
#include "tools/quorport/OptionGrammar.h"

namespace quordalvane::tool {
namespace {

constexpr Command commands[] = {
    {"find", "look for what could be printed on", find},
    {"list", "show the accessories, and which one the port name chooses", list},
    {"status", "ask for the printer's status", status, addStatusOptions},
    {"online", "ask whether the printer is ready to print", online},
    {"print", "print a file and tell honestly what became of it", print, addPrintOptions,
     CommandKind::Printing},
    {"jobs", "show the jobs that were printed under a name, and what became of them", jobs,
     addJobsOptions},
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

}  // namespace

std::span<const Command> everyCommand() {
  return commands;
}

const Command* commandNamed(std::string_view name) {
  const auto* const found = std::ranges::find(commands, name, &Command::name);
  return found == std::end(commands) ? nullptr : found;
}

}  // namespace quordalvane::tool
