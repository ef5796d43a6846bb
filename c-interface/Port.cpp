// The functions of the C interface that create a port, connect it, write and read bytes, ask for
// the status, and use the checked block.

#include <utility>

#include "backends/Devices.h"
#include "c-interface/Buffers.h"
#include "c-interface/Handles.h"
#include "c-interface/SameNumber.h"
#include "iphone-IOPort/PortName.h"

using namespace quordalvane;
using namespace quordalvane::c;

namespace {

static_assert(sameNumber(QUOR_EMULATION_UNKNOWN, ZKEmulationUnknown));
static_assert(sameNumber(QUOR_EMULATION_LINE, ZKEmulationQuorLine));
static_assert(sameNumber(QUOR_EMULATION_ESCPOS, ZKEmulationESCPOS));
static_assert(sameNumber(QUOR_RESULT_SUCCESS, ZKQuorIOResultCodeSuccess));
static_assert(sameNumber(QUOR_RESULT_FAILED, ZKQuorIOResultCodeFailedError));
static_assert(sameNumber(QUOR_RESULT_IN_PROCESS, ZKQuorIOResultCodeInProcessError));
static_assert(sameNumber(QUOR_RESULT_PAPER_PRESENT, ZKQuorIOResultCodePaperPresentError));
static_assert(sameNumber(QUOR_RESULT_IN_USE, ZKQuorIOResultCodeInUseError));

ZKEmulation emulationOf(int32_t number) {
  if (number < ZKEmulationUnknown || number > ZKEmulationESCPOS) {
    throw CallFailure(QUOR_USAGE,
                      "there is no emulation with the number " + std::to_string(number));
  }
  return static_cast<ZKEmulation>(number);
}

// Returns whether the port has chosen this accessory. The function compares the identifier, the
// name and the serial number, because two accessories may have the same identifier. The port has
// these texts even after `open` has failed.
bool hasChosen(const ExternalAccessoryPort& port, EAAccessory& accessory) {
  return accessory.connectionID() == port.connectionID() && accessory.name() == port.name() &&
         accessory.serialNumber() == port.serialNumber();
}

std::string whyNotOpen(const ExternalAccessoryPort& port) {
  const auto portName = port.portName();
  if (portName && !prefixLength(*portName)) {
    return tooShort(*portName);
  }
  for (const auto& accessory : port.platform().sharedAccessoryManager().connectedAccessories()) {
    if (hasChosen(port, *accessory)) {
      return "the printer cannot be reached: " + lastOpenError(*accessory);
    }
  }
  return "no accessory matches the port name";
}

using Writer = std::int32_t (ExternalAccessoryPort::*)(const ByteBuffer&);

QuorCode writeBy(Writer writer, QuorPort* port, const void* data, size_t size, size_t* written) {
  return guarded([&] {
    given(written, "the count") = 0;
    if (!std::in_range<std::int32_t>(size)) {
      throw CallFailure(QUOR_USAGE, "more bytes than can be counted");
    }
    const std::int32_t count = (given(port).*writer)(copyOf(data, size));
    succeed(count >= 0, "the bytes could not be written");
    *written = static_cast<size_t>(count);
  });
}

}  // namespace

QuorCode quor_port_create(const char* port_name, const char* port_settings, uint32_t timeout,
                          int32_t emulation, QuorPort** port) {
  return guarded([&] {
    given(port, "the pointer that receives the port") = nullptr;
    auto created = ExternalAccessoryPort::initWithPortName(
        textOrNone(port_name), textOrNone(port_settings), timeout, emulationOf(emulation));
    succeed(created != nullptr,
            "no devices were connected, or the system cannot start a thread for the port");
    *port = new QuorPort{std::move(created), nullptr};
  });
}

void quor_port_free(QuorPort* port) {
  if (port != nullptr) {
    port->port->setTransferObserver(nullptr);
    delete port;
  }
}

QuorCode quor_port_open(QuorPort* port) {
  return guarded([&] {
    if (!given(port).open()) {
      throw CallFailure(QUOR_FAILED, whyNotOpen(given(port)));
    }
  });
}

QuorCode quor_port_close(QuorPort* port) {
  return guarded([&] { given(port).close(); });
}

int32_t quor_port_is_connected(QuorPort* port) {
  return answered([&]() -> int32_t { return given(port).isConnected(); });
}

QuorCode quor_port_write(QuorPort* port, const void* data, size_t size, size_t* written) {
  return writeBy(&ExternalAccessoryPort::write, port, data, size, written);
}

QuorCode quor_port_read(QuorPort* port, void* buffer, size_t capacity, size_t* length) {
  return guarded([&] {
    const Buffer place = usable({buffer, capacity, length});
    const auto bytes = given(port).read(capacity);
    succeed(bytes.has_value(), "the link is lost or reports an error");
    copyBytes(*bytes, place);
  });
}

QuorCode quor_port_write_with_retry(QuorPort* port, const void* command, size_t size,
                                    size_t* written) {
  return writeBy(&ExternalAccessoryPort::writeWithRetry, port, command, size, written);
}

QuorCode quor_port_set_transfer_observer(QuorPort* port, QuorBytesWritten bytes_written,
                                         QuorBytesRead bytes_read, void* context) {
  return guarded([&] {
    auto observer = std::make_unique<FunctionObserver>(bytes_written, bytes_read, context);
    given(port).setTransferObserver(observer.get());
    port->observer = std::move(observer);
  });
}

QuorCode quor_port_get_parsed_status(QuorPort* port, QuorPrinterStatus_2* status, uint32_t level) {
  return guarded([&] {
    succeed(given(port).getParsedStatus(&given(status, "the status"), level),
            "the printer gave no usable status");
  });
}

QuorCode quor_port_get_online_status(QuorPort* port, int32_t* online) {
  return guarded([&] {
    given(online, "the answer") = 0;
    bool isOnline = false;
    succeed(given(port).getOnlineStatus(&isOnline), "the printer gave no usable status");
    *online = isOnline;
  });
}

QuorCode quor_port_begin_checked_block(QuorPort* port, QuorPrinterStatus_2* status, uint32_t level,
                                       int64_t* result_code) {
  return guarded([&] {
    given(result_code, "the result code") = QUOR_RESULT_FAILED;
    succeed(given(port).beginCheckedBlock(&given(status, "the status"), level, result_code),
            "the printer could not be prepared for a job");
  });
}

QuorCode quor_port_end_checked_block(QuorPort* port, QuorPrinterStatus_2* status, uint32_t level) {
  return guarded([&] {
    succeed(given(port).endCheckedBlock(&given(status, "the status"), level),
            "the printer did not show in time that it has processed everything");
  });
}

QuorCode quor_port_start_data_cancel(QuorPort* port) {
  return guarded([&] {
    succeed(given(port).startDataCancel(),
            "the command to cancel data could not be written completely");
  });
}
