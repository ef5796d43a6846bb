#include "tools/quorport/Commands.h"

namespace quordalvane::tool {

std::span<const Command> commands() {
  static constexpr Command all[] = {
      {"list", "show the accessories, and which one the port name chooses", list},
      {"status", "ask for the printer's status", status},
      {"online", "ask whether the printer is ready to print", online},
      {"print", "print a file and tell honestly what became of it", print},
      {"cancel", "make the printer drop what it has received and not yet printed", cancel},
      {"firmware", "ask for the firmware text", firmware},
      {"dipswitch", "ask for both banks of DIP switches", dipswitch},
      {"button-security", "ask for the button-security time-out", buttonSecurity},
      {"disconnect", "make the printer's Bluetooth module drop the link", disconnect},
      {"monitor", "show the printer's state and every change of it, until stopped", monitor},
      {"doctor", "find out what is wrong with the devices, and what to do about it", doctor},
      {"simulate", "serve a virtual printer until stopped", simulate},
  };
  return all;
}

}  // namespace quordalvane::tool
