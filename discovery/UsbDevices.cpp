#include "discovery/UsbDevices.h"

#include <unistd.h>

#include <algorithm>

#include "text/PrintableText.h"

namespace quordalvane {
namespace {

using posix::UsbPrinter;

bool isNamedBySerial(const UsbPrinter& printer, const posix::UsbRoots& roots) {
  if (printer.serial.empty() || !isPrintable(printer.serial)) {
    return false;
  }
  try {
    return posix::findUsbPrinter(printer.serial, roots).node == printer.node;
  } catch (const std::system_error&) {
    return false;  // another printer has the same serial number
  }
}

std::string nameOf(const UsbPrinter& printer) {
  const std::string gap = printer.maker.empty() || printer.model.empty() ? "" : " ";
  const std::string name = printer.maker + gap + printer.model;
  return name.empty() ? "USB printer " + printer.vendor + ":" + printer.product : name;
}

FoundDevice found(const UsbPrinter& printer, const posix::UsbRoots& roots) {
  const std::string node = printer.node.string();
  return {.device = deviceText("usb", isNamedBySerial(printer, roots) ? printer.serial : node),
          .name = shownText(nameOf(printer)),
          .serialNumber = shownText(printer.serial),
          .maker = shownText(printer.maker),
          .model = shownText(printer.model),
          .via = Via::Usb,
          .reachable = ::access(node.c_str(), R_OK | W_OK) == 0};
}

}  // namespace

std::vector<FoundDevice> usbDevices(const posix::UsbRoots& roots) {
  std::vector<FoundDevice> devices;
  for (const UsbPrinter& printer : posix::usbPrinters(roots)) {
    devices.push_back(found(printer, roots));
  }
  return devices;
}

}  // namespace quordalvane
