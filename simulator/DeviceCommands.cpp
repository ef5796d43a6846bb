// The commands that print nothing: cash drawer, buzzer, customer display.

#include "simulator/Typesetter.h"

namespace quordalvane::simulator {

// In the command 1b 3d n, bit 0 of n selects the printer, and bit 1 selects the display.
void Typesetter::peripheral(ByteView command) {
  displayListens_ = (command[2] & 2U) != 0;
  printerListens_ = (command[2] & 1U) != 0 || !displayListens_;
}

// Returns true for the display's own commands. While only the display is selected, returns true
// also for all other commands except 1b 3d. Each text byte counts as a command.
bool Typesetter::isForDisplay(ByteView command) const {
  constexpr std::uint8_t ofDisplays = 0x1f;
  if (command[0] == ofDisplays && command.size() > 1) {
    return true;
  }
  const bool selects = command.size() == 3 && command[0] == 0x1b && command[1] == 0x3d;
  return !printerListens_ && !selects;
}

void Typesetter::beepOrSkip(ByteView command) {
  constexpr std::uint8_t buzzer = 0x41;
  if (command[2] == buzzer) {
    return beep(command);
  }
  paper_.noteSkipped(command);
}

void Typesetter::pulse(ByteView command) {
  constexpr std::uint8_t toDrawer = 1;
  constexpr std::uint8_t toBuzzer = 3;
  if (command[2] == toDrawer) {
    return drawer(command);
  }
  if (command[2] == toBuzzer) {
    return beep(command);
  }
  paper_.noteSkipped(command);
}

void Typesetter::drawer(ByteView) {
  record().noteDrawer();
}

void Typesetter::beep(ByteView) {
  record().noteBeep();
}

}  // namespace quordalvane::simulator
