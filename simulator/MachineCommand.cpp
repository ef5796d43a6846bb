#include "simulator/MachineCommand.h"

#include <algorithm>
#include <array>

namespace quordalvane::simulator {
namespace {

constexpr int any = -1;
constexpr int printable = -2;

struct Pattern {
  MachineCommand command;
  KnownWith knownWith;
  std::size_t length;
  std::array<int, 11> bytes;
};

using enum MachineCommand;
using enum KnownWith;

constexpr Pattern patterns[] = {
    {PrepareStatus, LineMode, 4, {0x1b, 0x2a, 0x72, 0x42}},
    {StatusRequest, LineMode, 3, {0x1b, 0x06, 0x01}},
    {RealTimeStatus, Always, 3, {0x10, 0x04, 0x01}},
    {RealTimeStatus, Always, 3, {0x10, 0x04, 0x02}},
    {RealTimeStatus, Always, 3, {0x10, 0x04, 0x03}},
    {RealTimeStatus, Always, 3, {0x10, 0x04, 0x04}},
    {RealTimeStatus, Always, 3, {0x10, 0x04, 0x05}},
    {RealTimeStatus, Always, 3, {0x10, 0x04, 0x06}},
    {RealTimeStatus, Always, 4, {0x10, 0x04, 0x07, any}},
    {RealTimeStatus, Always, 4, {0x10, 0x04, 0x08, any}},
    {RealTimeStatus, Always, 4, {0x10, 0x04, 0x12, any}},
    {Recover, Always, 3, {0x10, 0x05, 0x01}},
    {Recover, Always, 3, {0x10, 0x05, 0x02}},
    {UnaskedStatus, Always, 3, {0x1d, 0x61, any}},
    {Firmware, LineMode, 5, {0x1b, 0x23, 0x2a, 0x0a, 0x00}},
    {Identify, Always, 3, {0x1d, 0x49, any}},
    {DipSwitches, LineMode, 6, {0x1b, 0x23, 0x2c, 0x31, 0x0a, 0x00}},
    {DipSwitches, LineMode, 6, {0x1b, 0x23, 0x2c, 0x32, 0x0a, 0x00}},
    {CounterReset, LineMode, 4, {0x1b, 0x1e, 0x45, 0x00}},
    {CounterReset, Block, 6, {0x1b, 0x1d, 0x03, 0x02, 0x00, 0x00}},
    {DataCancel, Block, 6, {0x1b, 0x1d, 0x03, 0x03, 0x00, 0x00}},
    {DataCancelEnd, Block, 6, {0x1b, 0x1d, 0x03, 0x04, 0x00, 0x00}},
    {DataTimeout, Block, 6, {0x1b, 0x1d, 0x03, 0x05, 0x01, any}},
    {ClearBuffer, Always, 10, {0x10, 0x14, 0x08, 0x01, 0x03, 0x14, 0x01, 0x06, 0x02, 0x08}},
    {Etb, LineMode, 1, {0x17}},
    {ReportingEtb, Block, 6, {0x1b, 0x1d, 0x03, 0x01, 0x00, 0x00}},
    {ReturnProcessId,
     ProcessId,
     11,
     {0x1d, 0x28, 0x48, 0x06, 0x00, 0x30, 0x30, printable, printable, printable, printable}},
    {InOrderStatus, InOrder, 3, {0x1d, 0x72, 0x01}},
    {InOrderStatus, InOrder, 3, {0x1d, 0x72, 0x02}},
    {InOrderStatus, InOrder, 3, {0x1d, 0x72, 0x31}},
    {InOrderStatus, InOrder, 3, {0x1d, 0x72, 0x32}},
    {InOrderStatus, Always, 3, {0x1b, 0x75, 0x00}},
    {InOrderStatus, Always, 3, {0x1b, 0x75, 0x30}},
    {InOrderStatus, Always, 2, {0x1b, 0x76}},
    {AskSetting, Always, 7, {0x1d, 0x28, 0x45, 0x02, 0x00, 0x04, any}},
    {AskSetting, Always, 7, {0x1d, 0x28, 0x45, 0x02, 0x00, 0x06, any}},
    {AskSetting, Always, 8, {0x1d, 0x28, 0x45, 0x03, 0x00, 0x01, 0x49, 0x4e}},
    {AskGraphics, Always, 7, {0x1d, 0x28, 0x4c, 0x02, 0x00, 0x30, 0x00}},
    {AskGraphics, Always, 7, {0x1d, 0x28, 0x4c, 0x02, 0x00, 0x30, 0x03}},
    {AskGraphics, Always, 7, {0x1d, 0x28, 0x4c, 0x02, 0x00, 0x30, 0x04}},
    {AskGraphics, Always, 7, {0x1d, 0x28, 0x4c, 0x02, 0x00, 0x30, 0x30}},
    {AskGraphics, Always, 7, {0x1d, 0x28, 0x4c, 0x02, 0x00, 0x30, 0x33}},
    {AskGraphics, Always, 7, {0x1d, 0x28, 0x4c, 0x02, 0x00, 0x30, 0x34}},
    {AskGraphics, Always, 9, {0x1d, 0x28, 0x4c, 0x04, 0x00, 0x30, 0x40, 0x4b, 0x43}},
    {AskGraphics, Always, 9, {0x1d, 0x28, 0x4c, 0x04, 0x00, 0x30, 0x50, 0x4b, 0x43}},
    {AskGraphics, Always, 1, {0x06}},
    {AskGraphics, Always, 1, {0x15}},
    {AskSymbolSize, Always, 8, {0x1d, 0x28, 0x6b, 0x03, 0x00, any, 0x52, any}},
};

// Returns true for text. Most bytes of a job are text, and need no search, because no pattern
// begins with a text character.
bool isText(ByteView bytes) {
  return bytes[0] >= 0x20;
}

bool isByte(std::uint8_t byte, int wanted) {
  return wanted == any || (wanted == printable ? byte >= 0x20 && byte <= 0x7e : byte == wanted);
}

bool beginsLike(const Pattern& pattern, ByteView bytes, const Dialect& dialect) {
  return knows(dialect, pattern.knownWith) &&
         std::equal(bytes.begin(), bytes.end(), pattern.bytes.begin(), isByte);
}

}  // namespace

bool actsOnReception(MachineCommand command) {
  return command != Printing && !actsInTurn(command);
}

bool actsInTurn(MachineCommand command) {
  return command == Etb || command == ReportingEtb || command == ReturnProcessId ||
         command == InOrderStatus || command == AskSetting || command == AskGraphics ||
         command == AskSymbolSize;
}

MachineCommand machineCommand(ByteView bytes, const Dialect& dialect) {
  if (isText(bytes)) {
    return Printing;
  }
  for (const Pattern& pattern : patterns) {
    if (bytes.size() == pattern.length && beginsLike(pattern, bytes, dialect)) {
      return pattern.command;
    }
  }
  return Printing;
}

bool mayBecomeMachineCommand(ByteView bytes, const Dialect& dialect) {
  return !isText(bytes) &&
         std::any_of(std::begin(patterns), std::end(patterns), [&](const Pattern& pattern) {
           return bytes.size() < pattern.length && beginsLike(pattern, bytes, dialect);
         });
}

}  // namespace quordalvane::simulator
