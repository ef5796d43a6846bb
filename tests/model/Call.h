#pragma once

#include <functional>
#include <string>
#include <vector>

#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "tests/model/Model.h"

namespace quordalvane::test {

/// The objects that the caller of an operation owns and passes in.
struct Caller {
  Caller();

  /// Keeps bytes that a call passes in; traces show them as "<data>".
  const Bytes& take(Bytes bytesToHandIn);

  Trace* trace = nullptr;
  Bytes data;
  QuorPrinterStatus_2 status;  // 7 in each flag and number, 0xee in each byte of raw
  std::int64_t resultCode = 77;
  bool onlineStatus = true;
};

/// The name of an operation, and the time-out that the call passes to it, if any.
struct Operation {
  std::string name;
  std::int32_t timeoutMillis = 0;
};

/// One call of a port's operation, which a port and the model can both run. It returns the result
/// as text: "true", "-1", "none", "<1b 06>", "\"text\"", or the exception.
struct Call {
  std::string name;
  std::function<std::string(ExternalAccessoryPort&, Caller&)> onPort;
  std::function<std::string(Model&, Caller&)> onModel;
  std::vector<Operation> operations;  // the operations of which the call consists
};

/// The value as text, for results.
std::string shownResult(bool result);
std::string shownResult(std::int32_t result);
std::string shownResult(std::int64_t result);
std::string shownResult(const std::optional<Bytes>& result);
std::string shownResult(const std::optional<std::string>& result);

/// Runs `operation` and returns the text of its exception, if it throws.
std::string resultOf(const std::function<std::string()>& operation);

/// Makes a call that runs `body` with a port or a model, and with the caller's objects.
template <typename Body>
Call makeCall(std::string name, Body body) {
  const auto run = [body](auto& port, Caller& caller) {
    return resultOf([&] { return shownResult(body(port, caller)); });
  };
  return {name, run, run, {{name}}};
}

Call open();
Call close();
Call isConnected();
Call write(Bytes data);
Call read(std::size_t count);
Call writeWithRetry(Bytes command);
Call getParsedStatus(std::uint32_t level = 2);
Call getOnlineStatus();
Call beginCheckedBlock(std::uint32_t level = 5);
Call endCheckedBlock(std::uint32_t level = 5);
Call startDataCancel();
Call retrieveFirmwareInformation();
Call retrieveFirmwareInformation2();
Call retrieveESCPOSFirmwareInformation();
Call retrieveDipSwitchInformation();
Call retrieveDipSwitchBank(std::uint8_t bank);
Call retrieveButtonSecurityTimeout();
Call enterATMode();
Call getPrinterResponse(std::optional<std::string> title, std::int32_t length,
                        std::int32_t timeoutMillis);
Call disconnect();
Call disconnectBluetoothConnection();

/// Every public operation once, with plain arguments.
std::vector<Call> allCalls();

/// Combines several calls into one: they run one after the other on one port, and the results are
/// joined by "; ".
Call inTurn(std::vector<Call> calls);

}  // namespace quordalvane::test
