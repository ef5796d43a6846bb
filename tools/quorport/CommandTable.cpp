#include <algorithm>
#include <iterator>

#include "tools/quorport/Commands.h"
#include "tools/quorport/JournalGrammar.h"
#include "tools/quorport/OptionGrammar.h"

namespace quordalvane::tool {
namespace {

constexpr Command commands[] = {
    {"find", "look for devices that could be printers", find},
    {"list", "show the accessory (printer) of each device, and which one the port name chooses",
     list},
    {"status", "ask the printer for its status", status, addStatusOptions},
    {"online", "ask the printer whether it is ready to print", online},
    {"print", "print a file and report the outcome honestly", print, addPrintOptions,
     CommandKind::Printing},
    {"jobs", "show the jobs that were printed under a name, and their outcomes", jobs,
     addJobsOptions},
    {"cancel", "make the printer drop the data that it has not yet printed", cancel},
    {"firmware", "ask the printer for its firmware text", firmware},
    {"dipswitch", "ask the printer for both banks of its DIP switches", dipswitch},
    {"button-security", "ask the printer for its button-security time-out", buttonSecurity},
    {"disconnect", "make the printer's Bluetooth module drop the link", disconnect},
    {"monitor", "show the printer's state and each of its changes, until stopped", monitor,
     addMonitorOptions},
    {"doctor", "find the faults of the devices, and say how to remedy them", doctor,
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
