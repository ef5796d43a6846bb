#pragma once

#include <string>
#include <string_view>

namespace quordalvane {

class EAAccessory;
class EAAccessoryManager;

/// With these functions a port checks the model number and the Bluetooth address of an accessory,
/// to decide whether to select it. Any thread may call them. The last two ask the platform; the
/// others are pure.
class Util {
 public:
  /// Returns true if `modelNumber` ends in "-U". A model with such a number is attached by a USB
  /// cable.
  static bool isUsbDevice(std::string_view modelNumber);

  /// Returns the first Bluetooth address in `text`, in the letter case of the text: six pairs of
  /// hex digits joined by ':', with no hex digit directly before or after them. Returns "" if there
  /// is no address.
  static std::string getMACAddressFromString(std::string_view text);

  /// Returns true if the platform has its own way to read an accessory's Bluetooth address.
  static bool isSet(EAAccessoryManager& manager);

  /// Asks the platform for the accessory's Bluetooth address. Returns "" if the platform gives
  /// none.
  static std::string getMACAddressFromSpecifiedMethod(EAAccessoryManager& manager,
                                                      EAAccessory& accessory);
};

}  // namespace quordalvane
