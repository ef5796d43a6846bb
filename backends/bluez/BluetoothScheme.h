#pragma once

#include <quordalvane/QuorExport.h>

namespace quordalvane {

/// Adds the scheme of printers that are paired with this machine, so that device texts may be
/// `bluetooth:`, `bluetooth:ADDRESS` and `bluetooth:NAME`. A program calls it before it parses a
/// device text and before it starts a thread; a second call has no effect. The Bluetooth service is
/// not asked, and no thread is started, before such a device is named.
QUOR_EXPORT void addBluetoothScheme();

}  // namespace quordalvane
