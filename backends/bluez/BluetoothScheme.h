#pragma once

#include <quordalvane/QuorExport.h>

namespace quordalvane {

/// Lets device texts take `bluetooth:`, `bluetooth:ADDRESS` and `bluetooth:NAME`: printers that are
/// paired with this machine. A program calls it once, before it reads a device text and before it
/// starts a thread; a second call does nothing. Nothing is asked and no thread is started before
/// such a device is named.
QUOR_EXPORT void addBluetoothScheme();

}  // namespace quordalvane
