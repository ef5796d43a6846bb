// The functions of the C interface for facts about the printer, and for its Bluetooth module.

#include <algorithm>

#include "c-interface/Buffers.h"
#include "c-interface/Handles.h"

using namespace quordalvane;
using namespace quordalvane::c;

namespace {

using Exchange = bool (ExternalAccessoryPort::*)();

QuorCode run(Exchange exchange, QuorPort* port, const char* failure) {
  return guarded([&] { succeed((given(port).*exchange)(), failure); });
}

constexpr auto noFirmware = "the printer did not answer with its firmware text";
constexpr auto noDipSwitches = "the printer did not answer with its DIP switches";
constexpr auto noDisconnection = "the Bluetooth module did not drop the link";

}  // namespace

QuorCode quor_port_retrieve_firmware_information(QuorPort* port) {
  return run(&ExternalAccessoryPort::retrieveFirmwareInformation, port, noFirmware);
}

QuorCode quor_port_retrieve_firmware_information2(QuorPort* port) {
  return run(&ExternalAccessoryPort::retrieveFirmwareInformation2, port, noFirmware);
}

QuorCode quor_port_retrieve_escpos_firmware_information(QuorPort* port) {
  return run(&ExternalAccessoryPort::retrieveESCPOSFirmwareInformation, port, noFirmware);
}

QuorCode quor_port_retrieve_dip_switch_information(QuorPort* port) {
  return run(&ExternalAccessoryPort::retrieveDipSwitchInformation, port, noDipSwitches);
}

QuorCode quor_port_retrieve_dip_switch_bank(QuorPort* port, uint8_t bank, uint8_t* settings) {
  return guarded([&] {
    given(settings, "the settings");
    const auto bytes = given(port).retrieveDipSwitchInformation(bank);
    succeed(bytes.has_value(), noDipSwitches);
    std::copy_n(bytes->begin(), 2, settings);
  });
}

QuorCode quor_port_retrieve_button_security_timeout(QuorPort* port, uint32_t* milliseconds) {
  return guarded([&] {
    given(milliseconds, "the time-out");
    const std::int64_t timeout = given(port).retrieveButtonSecurityTimeout();
    succeed(timeout >= 0, "the printer did not report its button-security time-out");
    *milliseconds = static_cast<uint32_t>(timeout);
  });
}

QuorCode quor_port_enter_at_mode(QuorPort* port) {
  return run(&ExternalAccessoryPort::enterATMode, port,
             "the Bluetooth module did not enter command mode");
}

QuorCode quor_port_get_printer_response(QuorPort* port, const char* setting_title,
                                        int32_t setting_length, int32_t timeout, char* text,
                                        size_t capacity, size_t* length) {
  return guarded([&] {
    const Buffer place = usable({text, capacity, length});
    const auto response = given(port).getPrinterResponseWithSettingTitle(textOrNone(setting_title),
                                                                         setting_length, timeout);
    succeed(response.has_value(), "the Bluetooth module gave no result");
    copyText(response, place);
  });
}

QuorCode quor_port_disconnect(QuorPort* port) {
  return run(&ExternalAccessoryPort::disconnect, port, noDisconnection);
}

QuorCode quor_port_disconnect_bluetooth_connection(QuorPort* port) {
  return run(&ExternalAccessoryPort::disconnectBluetoothConnection, port, noDisconnection);
}
