#pragma once

#include <cstdint>

#include "simulator/Bytes.h"
#include "simulator/Dialect.h"

namespace quordalvane::simulator {

/// The meaning of a complete command for the printer itself. `Printing` is any command that affects
/// only the paper, and any single character.
enum class MachineCommand {
  Printing,
  PrepareStatus,
  StatusRequest,
  RealTimeStatus,
  UnaskedStatus,
  Firmware,
  Identify,
  DipSwitches,
  CounterReset,
  DataCancel,
  DataCancelEnd,
  DataTimeout,
  ClearBuffer,
  Recover,
  Etb,
  ReportingEtb,
  ReturnProcessId,
  InOrderStatus,
  AskSetting,
  AskGraphics,
  AskSymbolSize,
};

/// Returns true for commands that act when they are received, ahead of the print data in the
/// buffer.
bool actsOnReception(MachineCommand command);

/// Returns true for commands that wait for their turn: they act when all print data before them is
/// printed.
bool actsInTurn(MachineCommand command);

/// Returns the meaning of `bytes`, which is one complete command, for a printer of this dialect.
MachineCommand machineCommand(ByteView bytes, const Dialect& dialect);

/// Returns true if a command other than `Printing` begins with `bytes` and is longer.
bool mayBecomeMachineCommand(ByteView bytes, const Dialect& dialect);

}  // namespace quordalvane::simulator
