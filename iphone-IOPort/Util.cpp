#include "iphone-IOPort/Util.h"

#include <cstddef>

#include "platform/EAAccessory.h"
#include "text/Hex.h"

namespace quordalvane {
namespace {

constexpr std::size_t addressLength = 17;  // "01:23:45:67:89:AB"

bool isAddress(std::string_view text) {
  for (std::size_t i = 0; i < addressLength; ++i) {
    const bool fits = i % 3 == 2 ? text[i] == ':' : isHexDigit(text[i]);
    if (!fits) {
      return false;
    }
  }
  return true;
}

}  // namespace

bool Util::isUsbDevice(std::string_view modelNumber) {
  return modelNumber.ends_with("-U");
}

std::string Util::getMACAddressFromString(std::string_view text) {
  for (std::size_t i = 0; i + addressLength <= text.size(); ++i) {
    const std::size_t end = i + addressLength;
    const bool startsInside = i > 0 && isHexDigit(text[i - 1]);
    const bool goesOn = end < text.size() && isHexDigit(text[end]);
    if (!startsInside && !goesOn && isAddress(text.substr(i, addressLength))) {
      return std::string(text.substr(i, addressLength));
    }
  }
  return "";
}

bool Util::isSet(EAAccessoryManager& manager) {
  return manager.readsAddresses();
}

std::string Util::getMACAddressFromSpecifiedMethod(EAAccessoryManager& manager,
                                                   EAAccessory& accessory) {
  return manager.addressOf(accessory);
}

}  // namespace quordalvane
