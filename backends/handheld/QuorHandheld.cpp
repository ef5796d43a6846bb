#include "backends/handheld/QuorHandheld.h"

#include <memory>
#include <new>

#include "backends/handheld/HandheldPlatform.h"

QuorCode quor_use_handheld_platform() {
  try {
    quordalvane::setProcessPlatform(std::make_shared<quordalvane::handheld::HandheldPlatform>());
    return QUOR_OK;
  } catch (const std::bad_alloc&) {
    return QUOR_NO_MEMORY;
  }
}
