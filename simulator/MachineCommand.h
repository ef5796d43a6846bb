#pragma once

#include <cstdint>

#include "simulator/Bytes.h"
#include "simulator/Dialect.h"

namespace quordalvane::simulator {

/// The meaning of a complete command for the machine. `Printing` is any command that matters only
/// to the paper, and any single character.
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
  AskSymbolSize,
};

/// True for commands that act when they are received, ahead of the print data that is still held.
bool actsOnReception(MachineCommand command);

/// True for commands that wait for their turn: they act when the print position passes them.
bool actsInTurn(MachineCommand command);

/// The meaning of these bytes, one whole command, for a printer of that dialect.
MachineCommand machineCommand(ByteView bytes, const Dialect& dialect);

/// True if more bytes may make these a command other than `Printing`.
bool mayBecomeMachineCommand(ByteView bytes, const Dialect& dialect);

}  // namespace quordalvane::simulator
