#include <cerrno>
#include <utility>

#include "backends/SpecText.h"
#include "backends/posix/Schemes.h"
#include "backends/posix/UsbAccessory.h"

namespace quordalvane::posix {
namespace {

constexpr std::size_t longestPlace = 4095;

constexpr int of(UsbError error) {
  return static_cast<int>(error);
}

constexpr OpenCause causes[] = {
    {of(UsbError::NotPluggedIn), "not-plugged-in", "the printer is not plugged in",
     "plug the printer in and switch it on; lsusb shows what the system sees", usbCategory},
    {of(UsbError::Ambiguous), "ambiguous", "more than one USB printer matches this device",
     "name one of the printers by its serial number or its path", usbCategory},
    {of(UsbError::NoDriver), "no-driver", "the driver usblp is not loaded",
     "load the driver: sudo modprobe usblp; if a blacklist below /etc/modprobe.d names usblp, "
     "remove that line",
     usbCategory},
    {of(UsbError::HeldByPrintSystem), "held-by-print-system",
     "another program has taken the printer from the driver, as the print system's USB back end "
     "does",
     "remove the printer from the print system, then unplug it and plug it in again", usbCategory},
    {of(UsbError::TakenFromDriver), "taken-from-driver",
     "a program has taken the printer from the driver usblp and not given it back",
     "unplug the printer and plug it in again", usbCategory},
    {of(UsbError::DroppedByHub), "dropped-by-hub", "a hub has switched off the printer's power",
     "plug the printer into a hub with a power supply, or into the machine itself", usbCategory},
    {ENOENT, "not-plugged-in", "the printer is not plugged in",
     "plug the printer in and switch it on"},
    {ENODEV, "not-plugged-in", "the printer is not plugged in",
     "plug the printer in and switch it on"},
    {EBUSY, "in-use", "another program uses the printer", "end the other program"},
};

void checkPlace(const std::string& place) {
  if (!place.empty()) {
    spec::checkPath(place, longestPlace);
  }
}

std::optional<std::string> placeMeantBy(std::string_view text) {
  return text.starts_with("/dev/usb/lp") ? std::optional(std::string(text)) : std::nullopt;
}

std::string fileOf(const DeviceSpec& spec) {
  try {
    return findUsbPrinter(spec.place).node.string();
  } catch (const std::system_error&) {
    return "";
  }
}

std::shared_ptr<EAAccessory> make(const DeviceSpec& spec, AccessoryIdentity identity,
                                  Clock& /*clock*/) {
  // If the device text gives no name, the name is equal to `spec.place` by default. The name that
  // the printer reports is better, so this default is removed.
  if (identity.name == spec.place) {
    identity.name = std::nullopt;
  }
  return std::make_shared<UsbAccessory>(std::move(identity), spec.place);
}

}  // namespace

constinit const Scheme usbScheme = {
    .name = "usb",
    .place = "",
    .about =
        "the only USB printer; if there are several: usb:SERIAL, usb:VID:PID or usb:/dev/usb/lpN",
    .checkPlace = checkPlace,
    .make = make,
    .ifSilent =
        "set the printer to the emulation that you have chosen; switch it off and on only if "
        "nobody prints on it",
    .ifNotUnderstood = "check that the device is the receipt printer",
    .causes = causes,
    .placeMeantBy = placeMeantBy,
    .fileOf = fileOf,
};

}  // namespace quordalvane::posix
