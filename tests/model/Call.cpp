#include "tests/model/Call.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "tests/model/ModelReplies.h"

namespace quordalvane::test {

Caller::Caller() : status{} {
  for (const Flag& flag : flags) {
    status.*flag.member = 7;
  }
  status.etbCounter = status.presenterState = status.connectedInterface = 7;
  status.rawLength = 7;
  std::fill(std::begin(status.raw), std::end(status.raw), 0xee);
}

const Bytes& Caller::take(Bytes bytesToHandIn) {
  data = std::move(bytesToHandIn);
  if (trace != nullptr) {
    trace->name(&data, "<data>");
    trace->name(data.data(), "<data>");
  }
  return data;
}

std::string shownResult(bool result) {
  return result ? "true" : "false";
}

std::string shownResult(std::int32_t result) {
  return std::to_string(result);
}

std::string shownResult(std::int64_t result) {
  return std::to_string(result);
}

std::string shownResult(const std::optional<Bytes>& result) {
  return result ? shown(*result) : "none";
}

std::string shownResult(const std::optional<std::string>& result) {
  return result ? '"' + *result + '"' : "none";
}

std::string resultOf(const std::function<std::string()>& operation) {
  try {
    return operation();
  } catch (const Raised& raised) {
    return raised.what;
  } catch (const PortException& raised) {
    return std::string(raised.name()) + ": " + raised.reason();
  } catch (const std::out_of_range&) {
    return "std::out_of_range";
  } catch (const std::exception& raised) {
    return std::string("std::exception: ") + raised.what();
  } catch (...) {
    return "another exception";
  }
}

Call open() {
  return makeCall("open", [](auto& port, Caller&) { return port.open(); });
}

Call close() {
  return makeCall("close", [](auto& port, Caller&) {
    port.close();
    return true;
  });
}

Call isConnected() {
  return makeCall("isConnected", [](auto& port, Caller&) { return port.isConnected(); });
}

Call write(Bytes data) {
  return makeCall("write",
                  [data](auto& port, Caller& caller) { return port.write(caller.take(data)); });
}

Call read(std::size_t count) {
  return makeCall("read", [count](auto& port, Caller&) { return port.read(count); });
}

Call writeWithRetry(Bytes command) {
  return makeCall("writeWithRetry", [command](auto& port, Caller& caller) {
    return port.writeWithRetry(caller.take(command));
  });
}

Call getParsedStatus(std::uint32_t level) {
  return makeCall("getParsedStatus", [level](auto& port, Caller& caller) {
    return port.getParsedStatus(&caller.status, level);
  });
}

Call getOnlineStatus() {
  return makeCall("getOnlineStatus", [](auto& port, Caller& caller) {
    return port.getOnlineStatus(&caller.onlineStatus);
  });
}

Call beginCheckedBlock(std::uint32_t level) {
  return makeCall("beginCheckedBlock", [level](auto& port, Caller& caller) {
    return port.beginCheckedBlock(&caller.status, level, &caller.resultCode);
  });
}

Call endCheckedBlock(std::uint32_t level) {
  return makeCall("endCheckedBlock", [level](auto& port, Caller& caller) {
    return port.endCheckedBlock(&caller.status, level);
  });
}

Call startDataCancel() {
  return makeCall("startDataCancel", [](auto& port, Caller&) { return port.startDataCancel(); });
}

Call retrieveFirmwareInformation() {
  return makeCall("retrieveFirmwareInformation",
                  [](auto& port, Caller&) { return port.retrieveFirmwareInformation(); });
}

Call retrieveFirmwareInformation2() {
  return makeCall("retrieveFirmwareInformation2",
                  [](auto& port, Caller&) { return port.retrieveFirmwareInformation2(); });
}

Call retrieveESCPOSFirmwareInformation() {
  return makeCall("retrieveESCPOSFirmwareInformation",
                  [](auto& port, Caller&) { return port.retrieveESCPOSFirmwareInformation(); });
}

Call retrieveDipSwitchInformation() {
  return makeCall("retrieveDipSwitchInformation",
                  [](auto& port, Caller&) { return port.retrieveDipSwitchInformation(); });
}

Call retrieveDipSwitchBank(std::uint8_t bank) {
  return makeCall("retrieveDipSwitchInformation:",
                  [bank](auto& port, Caller&) { return port.retrieveDipSwitchInformation(bank); });
}

Call retrieveButtonSecurityTimeout() {
  return makeCall("retrieveButtonSecurityTimeout",
                  [](auto& port, Caller&) { return port.retrieveButtonSecurityTimeout(); });
}

Call enterATMode() {
  return makeCall("enterATMode", [](auto& port, Caller&) { return port.enterATMode(); });
}

Call getPrinterResponse(std::optional<std::string> title, std::int32_t length,
                        std::int32_t timeoutMillis) {
  Call call = makeCall("getPrinterResponse", [=](auto& port, Caller&) {
    return port.getPrinterResponseWithSettingTitle(title, length, timeoutMillis);
  });
  call.operations.front().timeoutMillis = timeoutMillis;
  return call;
}

Call disconnect() {
  return makeCall("disconnect", [](auto& port, Caller&) { return port.disconnect(); });
}

Call disconnectBluetoothConnection() {
  return makeCall("disconnectBluetoothConnection",
                  [](auto& port, Caller&) { return port.disconnectBluetoothConnection(); });
}

std::vector<Call> allCalls() {
  return {open(),
          close(),
          isConnected(),
          write(bytes("41 42 43 44 45")),
          read(200),
          writeWithRetry(bytes("1b 40 1b 41 1b 42 1b")),
          getParsedStatus(),
          getOnlineStatus(),
          beginCheckedBlock(),
          endCheckedBlock(),
          startDataCancel(),
          retrieveFirmwareInformation(),
          retrieveFirmwareInformation2(),
          retrieveESCPOSFirmwareInformation(),
          retrieveDipSwitchInformation(),
          retrieveDipSwitchBank(1),
          retrieveButtonSecurityTimeout(),
          enterATMode(),
          getPrinterResponse("*AILBA:", 12, 3000),
          disconnect(),
          disconnectBluetoothConnection()};
}

namespace {

/// Makes the calls on `port`, which is a port or the model, and returns their joined results.
template <typename Side, typename Port>
std::string joined(const std::vector<Call>& calls, Side side, Port& port, Caller& caller) {
  std::string results;
  for (const Call& call : calls) {
    results += (results.empty() ? "" : "; ") + (call.*side)(port, caller);
  }
  return results;
}

}  // namespace

Call inTurn(std::vector<Call> calls) {
  std::string name;
  std::vector<Operation> operations;
  for (const Call& call : calls) {
    name += (name.empty() ? "" : ", ") + call.name;
    operations.insert(operations.end(), call.operations.begin(), call.operations.end());
  }
  return {name,
          [calls](ExternalAccessoryPort& port, Caller& caller) {
            return joined(calls, &Call::onPort, port, caller);
          },
          [calls](Model& model, Caller& caller) {
            return joined(calls, &Call::onModel, model, caller);
          },
          operations};
}

}  // namespace quordalvane::test
