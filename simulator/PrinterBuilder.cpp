#include "simulator/PrinterBuilder.h"

namespace quordalvane::simulator {

PrinterBuilder& PrinterBuilder::speed(std::uint32_t bytesPerSecond) {
  state_.bytesPerSecond = bytesPerSecond;
  return *this;
}

PrinterBuilder& PrinterBuilder::buffer(std::size_t bytes) {
  state_.setBufferSize(bytes);
  return *this;
}

PrinterBuilder& PrinterBuilder::firmware(std::string_view text) {
  state_.setFirmware(text);
  return *this;
}

PrinterBuilder& PrinterBuilder::dipBank1(DipBank bank) {
  state_.dipBanks[0] = bank;
  return *this;
}

PrinterBuilder& PrinterBuilder::dipBank2(DipBank bank) {
  state_.dipBanks[1] = bank;
  return *this;
}

PrinterBuilder& PrinterBuilder::buttonSecurity(unsigned setting) {
  state_.setButtonSecurity(setting);
  return *this;
}

PrinterBuilder& PrinterBuilder::bluetoothAddress(std::string_view digits) {
  state_.setBluetoothAddress(digits);
  return *this;
}

PrinterBuilder& PrinterBuilder::narrowPaper() {
  state_.setPaperWidth(58);
  return *this;
}

PrinterBuilder& PrinterBuilder::etbCounter(std::uint8_t count) {
  state_.etbCounter = count;
  return *this;
}

PrinterBuilder& PrinterBuilder::presenterState(std::uint8_t code) {
  state_.presenterState = code;
  return *this;
}

PrinterBuilder& PrinterBuilder::connectedInterface(std::uint8_t code) {
  state_.connectedInterface = code;
  return *this;
}

PrinterBuilder& PrinterBuilder::keepPrinted() {
  state_.keepsPrinted = true;
  return *this;
}

PrinterBuilder& PrinterBuilder::keepReceived() {
  state_.keepsReceived = true;
  return *this;
}

PrinterBuilder& PrinterBuilder::with(Flag flag, bool value) {
  state_.setFlag(flag, value);
  return *this;
}

PrinterBuilder& PrinterBuilder::fault(std::string_view name, std::string_view value) {
  faults_.add(name, value);
  return *this;
}

PrinterBuilder& PrinterBuilder::seed(std::uint64_t number) {
  faults_.seed = number;
  return *this;
}

PrinterBuilder& PrinterBuilder::set(std::string_view key, std::string_view value) {
  if (isFault(key) || key == "seed") {
    return fault(key, value);
  }
  state_.set(key, value);
  return *this;
}

}  // namespace quordalvane::simulator
