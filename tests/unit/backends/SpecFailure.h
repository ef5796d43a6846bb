#pragma once

#include <stdexcept>
#include <string>

#include "backends/DeviceSpec.h"

namespace quordalvane {

/// The message of the error by which a device text is refused.
inline std::string failure(const std::string& text) {
  try {
    parseDeviceSpec(text);
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
  return "it was taken";
}

}  // namespace quordalvane
