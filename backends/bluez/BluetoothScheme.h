#pragma once

#include <quordalvane/QuorExport.h>

namespace quordalvane {

/// Adds the scheme of printers that are paired with this machine. Afterwards device texts may be
/// `bluetooth:`, `bluetooth:ADDRESS` or `bluetooth:NAME`. Call this function before the program
/// parses a device text or starts a thread; a second call has no effect. The function does not ask
/// the Bluetooth service and starts no thread.
QUOR_EXPORT void addBluetoothScheme();

}  // namespace quordalvane
