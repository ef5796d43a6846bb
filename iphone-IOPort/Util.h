#pragma once

#include <string>
#include <string_view>

namespace quordalvane {

class EAAccessory;
class EAAccessoryManager;

/// The knowledge of models and Bluetooth addresses by which an accessory is selected. All calls are
/// pure except the last two, which ask the platform; any thread.
class Util {
 public:
  /// True for the models that are attached over the USB-type cable: those that end in "-U".
  static bool isUsbDevice(std::string_view modelNumber);

  /// The first Bluetooth address in `text`: six pairs of hex digits joined by ':', in the letter
  /// case of the text, with no hex digit directly before or after it. "" if there is no address.
  static std::string getMACAddressFromString(std::string_view text);

  /// True if the platform has a way of its own to read an accessory's address.
  static bool isSet(EAAccessoryManager& manager);

  /// The accessory's address, read in the platform's way, or "".
  static std::string getMACAddressFromSpecifiedMethod(EAAccessoryManager& manager,
                                                      EAAccessory& accessory);
};

}  // namespace quordalvane
