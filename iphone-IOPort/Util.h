#pragma once

#include <string>
#include <string_view>

namespace quordalvane {

class EAAccessory;
class EAAccessoryManager;

/// What the selection of an accessory needs to know of models and Bluetooth addresses. All calls
/// are pure but for the last two, which ask the platform; any thread.
class Util {
 public:
  /// True for the models that are attached over the USB-type cable: those that end in "-U".
  static bool isUsbDevice(std::string_view modelNumber);

  /// The first Bluetooth address in `text`: six pairs of hex digits joined by ':', in the letter
  /// case in which it stands there, with no hex digit right before or after it. "" if there is
  /// none.
  static std::string getMACAddressFromString(std::string_view text);

  /// True if the platform has a way of its own to read an accessory's address.
  static bool isSet(EAAccessoryManager& manager);

  /// The accessory's address, read in the platform's way, or "".
  static std::string getMACAddressFromSpecifiedMethod(EAAccessoryManager& manager,
                                                      EAAccessory& accessory);
};

}  // namespace quordalvane
