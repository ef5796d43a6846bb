#pragma once

#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdlib>

// Declares the part of the kernel's Bluetooth interface that the printer's end of a link needs.

namespace quordalvane::machine {

inline constexpr int rfcommProtocol = 3;
inline constexpr int adapterProtocol = 1;
/// The address of a serial port over Bluetooth, in the form that the kernel expects.
struct RfcommAddress {
  sa_family_t family = AF_BLUETOOTH;
  std::array<std::uint8_t, 6> address = {};  ///< the address, its last byte first
  std::uint8_t channel = 0;
};

/// Returns a socket that listens at `channel` of the adapter with this address, such as
/// "01:23:45:67:89:AB"; -1 if the socket cannot listen.
inline int listenAt(const char* address, std::uint8_t channel) {
  RfcommAddress place{.channel = channel};
  for (std::size_t i = 0; i < place.address.size(); ++i) {
    place.address[5 - i] = static_cast<std::uint8_t>(std::strtoul(address + 3 * i, nullptr, 16));
  }
  const int number = ::socket(AF_BLUETOOTH, SOCK_STREAM | SOCK_CLOEXEC, rfcommProtocol);
  const auto* const generic = reinterpret_cast<const sockaddr*>(&place);
  const bool isListening = ::bind(number, generic, sizeof place) == 0 && ::listen(number, 8) == 0;
  return isListening ? number : -1;
}

/// The address at which the kernel takes commands for adapters.
struct ManagementAddress {
  sa_family_t family = AF_BLUETOOTH;
  std::uint16_t adapter = 0xffff;  // no particular adapter
  std::uint16_t channel = 3;
};

/// Switches the adapter hci`index` on or off, and waits until this is done. Switching the adapter
/// off ends each of its connections, as if a printer were switched off.
inline void setPowered(std::uint8_t index, bool isOn) {
  constexpr std::uint8_t command = 5;
  const int number = ::socket(AF_BLUETOOTH, SOCK_RAW | SOCK_CLOEXEC, adapterProtocol);
  const ManagementAddress place;
  ::bind(number, reinterpret_cast<const sockaddr*>(&place), sizeof place);
  const std::uint8_t request[] = {command, 0, index, 0, 1, 0, static_cast<std::uint8_t>(isOn)};
  std::array<std::uint8_t, 512> event = {};
  ssize_t length = ::write(number, request, sizeof request);
  while (length > 0 && !(event[0] <= 2 && event[1] == 0 && event[6] == command)) {
    length = ::read(number, event.data(), event.size());  // until the command is done or refused
  }
  ::close(number);
}

}  // namespace quordalvane::machine
