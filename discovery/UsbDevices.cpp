#include "discovery/UsbDevices.h"

#include <unistd.h>

#include <algorithm>

#include "backends/SpecText.h"
#include "text/PrintableText.h"

namespace quordalvane {
namespace {

using posix::UsbPrinter;

std::string nameOf(const UsbPrinter& printer) {
  const std::string name = printer.makerAndModel();
  return name.empty() ? "USB printer " + printer.vendor + ":" + printer.product : name;
}

FoundDevice found(const UsbPrinter& printer, const std::vector<UsbPrinter>& printers) {
  const std::string node = printer.node.string();
  return {.device = isPrintable(printer.serial) ? textOf(printer, printers)
                                                : spec::deviceText("usb", node),
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
  const std::vector<UsbPrinter> printers = posix::usbPrinters(roots);
  devices.reserve(printers.size());
  for (const UsbPrinter& printer : printers) {
    devices.push_back(found(printer, printers));
  }
  return devices;
}

}  // namespace quordalvane
