#include "c-interface/Buffers.h"
#include "c-interface/Handles.h"

using namespace quordalvane;
using namespace quordalvane::c;

int32_t quor_port_emulation(QuorPort* port) {
  return answered([&]() -> int32_t { return given(port).emulation(); });
}

uint32_t quor_port_timeout(QuorPort* port) {
  return answered([&] { return given(port).timeoutMillis(); });
}

uint32_t quor_port_end_checked_block_timeout(QuorPort* port) {
  return answered([&] { return given(port).endCheckedBlockTimeoutMillis(); });
}

QuorCode quor_port_set_end_checked_block_timeout(QuorPort* port, uint32_t milliseconds) {
  return guarded([&] { given(port).setEndCheckedBlockTimeoutMillis(milliseconds); });
}

uint32_t quor_port_hold_print_timeout(QuorPort* port) {
  return answered([&] { return given(port).holdPrintTimeoutMillis(); });
}

QuorCode quor_port_set_hold_print_timeout(QuorPort* port, uint32_t milliseconds) {
  return guarded([&] { given(port).setHoldPrintTimeoutMillis(milliseconds); });
}

int64_t quor_port_data_timeout_seconds(QuorPort* port) {
  return answered([&] { return given(port).dataTimeoutSeconds(); });
}

QuorCode quor_port_set_data_timeout_seconds(QuorPort* port, int64_t seconds) {
  return guarded([&] { given(port).setDataTimeoutSeconds(seconds); });
}

QuorCode quor_port_firmware_information(QuorPort* port, char* text, size_t capacity,
                                        size_t* length) {
  return guarded([&] {
    return copyText(given(port).firmwareInformation(), {text, capacity, length});
  });
}

QuorCode quor_port_dip_switch_information(QuorPort* port, uint8_t* banks, size_t capacity,
                                          size_t* length) {
  return guarded([&] {
    ByteBuffer bytes;
    for (const ByteBuffer& bank : given(port).dipSwitchInformation()) {
      bytes.insert(bytes.end(), bank.begin(), bank.end());
    }
    copyBytes(bytes, {banks, capacity, length});
  });
}

QuorCode quor_port_name(QuorPort* port, char* text, size_t capacity, size_t* length) {
  return guarded([&] { return copyText(given(port).name(), {text, capacity, length}); });
}

QuorCode quor_port_set_name(QuorPort* port, const char* name) {
  return guarded([&] { given(port).setName(textOrNone(name)); });
}

QuorCode quor_port_serial_number(QuorPort* port, char* text, size_t capacity, size_t* length) {
  return guarded([&] { return copyText(given(port).serialNumber(), {text, capacity, length}); });
}

QuorCode quor_port_set_serial_number(QuorPort* port, const char* serial_number) {
  return guarded([&] { given(port).setSerialNumber(textOrNone(serial_number)); });
}

uint64_t quor_port_connection_id(QuorPort* port) {
  return answered([&] { return given(port).connectionID(); });
}

QuorCode quor_port_set_connection_id(QuorPort* port, uint64_t connection_id) {
  return guarded([&] { given(port).setConnectionID(connection_id); });
}

int32_t quor_port_is_brondel(QuorPort* port) {
  return answered([&]() -> int32_t { return given(port).isBrondel(); });
}

int32_t quor_port_has_thread71(QuorPort* port) {
  return answered([&]() -> int32_t { return given(port).thread71() != nullptr; });
}

QuorCode quor_port_result71(QuorPort* port, int32_t* result) {
  return guarded([&]() -> QuorCode {
    given(result, "the result");
    const auto opened = given(port).result71();
    *result = opened.value_or(false);
    return opened ? QUOR_OK : QUOR_NONE;
  });
}

QuorCode quor_port_set_result71(QuorPort* port, int32_t result) {
  return guarded(
      [&] { given(port).setResult71(result < 0 ? std::nullopt : std::optional(result != 0)); });
}

float quor_port_sec_interval1(QuorPort* port) {
  return answered([&] { return given(port).secInterval1(); });
}

float quor_port_sec_interval2(QuorPort* port) {
  return answered([&] { return given(port).secInterval2(); });
}
