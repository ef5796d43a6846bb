#pragma once

#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include <quordalvane/QuorExport.h>

#include "backends/DeviceSpec.h"
#include "backends/posix/PosixPlatform.h"
#include "platform/Clock.h"
#include "platform/EAAccessory.h"

namespace quordalvane {

/// Makes the accessory that `spec` describes. Nothing is connected before a session is opened on
/// it. Its connection identifier is the one given, otherwise a running number of the process: 1, 2,
/// and so on. `clock` must outlive the accessory; the virtual printer uses it.
///
/// Throws `std::invalid_argument` with a text for people if no back end is of its scheme or the
/// virtual printer refuses an option. May be called from any thread.
QUOR_EXPORT std::shared_ptr<EAAccessory> makeAccessory(const DeviceSpec& spec, Clock& clock);

/// The texts of the devices that `text` means: for `bluetooth:` one for each printer that is paired
/// now, with the keys of `text`; otherwise, and if none is paired, `text` itself. May be called
/// from any thread.
QUOR_EXPORT std::vector<std::string> devicesMeantBy(const std::string& text);

/// Makes the platform of an ordinary program, with the devices that these texts mean attached in
/// their order, and sets it as the process's own: ports that are created from then on find them.
///
///     quordalvane::connectDevices({"tcp:192.0.2.10:9100,name=Kitchen"});
///
/// Nothing is connected before a port is opened. Returns the platform, for attaching more. Throws
/// `std::invalid_argument` as `parseDeviceSpec` and `makeAccessory` do; the process's platform does
/// not change then.
QUOR_EXPORT std::shared_ptr<posix::PosixPlatform> connectDevices(
    const std::vector<std::string>& specs);

/// Why the latest session on `accessory` could not be opened, as a text for people; "" if it could,
/// or if the accessory's back end gives no reasons.
QUOR_EXPORT std::string lastOpenError(EAAccessory& accessory);

/// The error code of the same reason; 0 if it has none. `std::errc::device_or_resource_busy` means
/// that another program uses the device.
QUOR_EXPORT std::error_code lastOpenErrorCode(EAAccessory& accessory);

/// What keeps the printer of the open session on `accessory` from printing, as far as its USB port
/// reports it without an answer of the printer, as a text for people: "paper out" for example. ""
/// if it reports nothing, without an open session, and for all other devices.
QUOR_EXPORT std::string portState(EAAccessory& accessory);

}  // namespace quordalvane
