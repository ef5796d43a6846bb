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

/// Creates the accessory that `spec` describes. The accessory connects only when a session is
/// opened. The accessory's connection identifier is the `id` of `spec` or, if `spec` has no `id`,
/// the next number in this process: 1, 2, and so on. `clock` must outlive the accessory; the
/// virtual printer uses it.
///
/// Throws `std::invalid_argument`, with a message for people, if there is no back end for the
/// scheme or the virtual printer refuses an option. Any thread may call this function.
QUOR_EXPORT std::shared_ptr<EAAccessory> makeAccessory(const DeviceSpec& spec, Clock& clock);

/// Returns the device texts that `text` stands for. `bluetooth:`, with or without keys after the
/// colon, stands for all printers that are paired now. It gives one device text for each printer,
/// each with the same keys. Any other text stands for itself, and so does `bluetooth:` if no
/// printer is paired. Any thread may call this function.
QUOR_EXPORT std::vector<std::string> devicesMeantBy(const std::string& text);

/// Creates the platform of an ordinary program, attaches to it the devices in `specs`, in this
/// order, and sets it as the platform of the process. Ports that are created later find these
/// devices. For example:
///
///     quordalvane::connectDevices({"tcp:192.0.2.10:9100,name=Kitchen"});
///
/// Nothing is connected before a port is opened. Returns the platform, to which more devices can be
/// attached. Throws the exceptions of `parseDeviceSpec` and `makeAccessory`; in this case the
/// platform of the process does not change.
QUOR_EXPORT std::shared_ptr<posix::PosixPlatform> connectDevices(
    const std::vector<std::string>& specs);

/// Returns, as a text for people, the reason why the latest session on `accessory` could not be
/// opened. Returns "" if the session was opened, or if the accessory's back end gives no reasons.
QUOR_EXPORT std::string lastOpenError(EAAccessory& accessory);

/// Returns the error code of the reason that `lastOpenError` returns; 0 if the reason has no code.
/// `std::errc::device_or_resource_busy` means that another program uses the device.
QUOR_EXPORT std::error_code lastOpenErrorCode(EAAccessory& accessory);

/// Returns, as a text for people, why a USB printer does not print, for example "paper out". The
/// printer's USB port reports the reason even if the printer does not answer. Returns "" if the
/// port reports nothing, if no session is open on `accessory`, and for all other devices.
QUOR_EXPORT std::string portState(EAAccessory& accessory);

}  // namespace quordalvane
