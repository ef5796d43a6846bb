#include "backends/posix/UsbPrinters.h"

#include <algorithm>
#include <map>

#include "backends/SpecText.h"
#include "backends/posix/Holders.h"
#include "backends/posix/SystemFiles.h"
#include "text/LetterCase.h"

namespace quordalvane::posix {
namespace {

namespace fs = std::filesystem;

class UsbCategory : public std::error_category {
 public:
  const char* name() const noexcept override { return "usb"; }

  std::string message(int code) const override {
    switch (static_cast<UsbError>(code)) {
      case UsbError::NotPluggedIn:
        return "the printer is not plugged in";
      case UsbError::Ambiguous:
        return "more than one USB printer matches this device";
      case UsbError::NoDriver:
        return "the driver usblp is not loaded";
      case UsbError::HeldByPrintSystem:
        return "another program took the printer from the driver usblp";
      case UsbError::TakenFromDriver:
        return "a program took the printer from the driver usblp and did not give it back";
      case UsbError::DroppedByHub:
        return "a hub has switched off the printer's power";
    }
    return "unknown";
  }

  std::error_condition default_error_condition(int code) const noexcept override {
    return static_cast<UsbError>(code) == UsbError::HeldByPrintSystem
               ? std::make_error_condition(std::errc::device_or_resource_busy)
               : std::error_condition(code, *this);
  }
};

[[noreturn]] void fail(UsbError error, const std::string& text) {
  throw std::system_error(static_cast<int>(error), usbCategory(), text);
}

std::string trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(' ');
  const auto last = text.find_last_not_of(' ');
  return first == std::string_view::npos ? "" : std::string(text.substr(first, last - first + 1));
}

// Returns the fields of a text such as "MFG:Maker;MDL:Model;SN:1;", by their names.
std::map<std::string, std::string, std::less<>> fieldsOf(std::string_view id) {
  std::map<std::string, std::string, std::less<>> fields;
  while (!id.empty()) {
    const std::string_view field = id.substr(0, id.find(';'));
    id.remove_prefix(std::min(id.size(), field.size() + 1));
    const std::size_t colon = field.find(':');
    if (colon != std::string_view::npos) {
      fields.emplace(trimmed(field.substr(0, colon)), trimmed(field.substr(colon + 1)));
    }
  }
  return fields;
}

std::string either(const std::map<std::string, std::string, std::less<>>& fields,
                   std::string_view shortName, std::string_view longName) {
  const auto found = fields.find(shortName);
  const auto other = fields.find(longName);
  return found != fields.end() ? found->second : other != fields.end() ? other->second : "";
}

UsbPrinter printerAt(const fs::path& entry, const UsbRoots& roots) {
  const fs::path interface = entry / "device";
  std::error_code error;
  const fs::path device = fs::canonical(interface, error).parent_path();
  const auto fields = fieldsOf(contentOf(interface / "ieee1284_id"));
  UsbPrinter printer;
  printer.node = roots.dev / "usb" / entry.filename();
  printer.vendor = contentOf(device / "idVendor");
  printer.product = contentOf(device / "idProduct");
  printer.serial = trimmed(contentOf(device / "serial"));
  if (printer.serial.empty()) {
    printer.serial = either(fields, "SN", "SERIALNUMBER");
  }
  printer.maker = either(fields, "MFG", "MANUFACTURER");
  printer.model = either(fields, "MDL", "MODEL");
  return printer;
}

// Orders printers by the numbers of their nodes, so that "lp10" follows "lp9".
bool comesBefore(const UsbPrinter& one, const UsbPrinter& other) {
  const std::string first = one.node.filename().string();
  const std::string second = other.node.filename().string();
  return first.size() != second.size() ? first.size() < second.size() : first < second;
}

bool isChosen(const UsbPrinter& printer, std::string_view place) {
  if (place.starts_with('/')) {
    std::error_code error;
    return fs::weakly_canonical(fs::path(place), error) ==
           fs::weakly_canonical(printer.node, error);
  }
  const bool isOfModel = equalIgnoringCase(place, printer.vendor + ":" + printer.product);
  return place.empty() || isOfModel || printer.serial == place;
}

// Returns a list of the printers in `chosen`, for people. The list gives for each printer the
// device text that selects only this printer among `printers`.
std::string listed(const std::vector<UsbPrinter>& chosen, const std::vector<UsbPrinter>& printers) {
  std::string text;
  for (const UsbPrinter& printer : chosen) {
    const std::string model = printer.makerAndModel();
    text += text.empty() ? "" : ", ";
    text += textOf(printer, printers) + (model.empty() ? "" : " (" + model + ")");
  }
  return text;
}

// Returns the node by which programs use a USB device without a driver, for example
// "/dev/bus/usb/001/004".
fs::path ownNodeOf(const fs::path& device, const UsbRoots& roots) {
  const auto number = [&device](const char* file) {
    const std::string text = contentOf(device / file);
    return std::string(3 - std::min<std::size_t>(text.size(), 3), '0') + text;
  };
  return roots.dev / "bus/usb" / number("busnum") / number("devnum");
}

// Throws an exception with the reason if the driver does not serve a printer that is plugged in.
void failIfUnserved(const std::string& wanted, const UsbRoots& roots) {
  constexpr std::string_view printerClass = "07";
  constexpr std::string_view networkPrinting = "04";  // a protocol that the driver does not serve
  for (const fs::path& entry : entriesOf(roots.sys / "bus/usb/devices")) {
    if (contentOf(entry / "bInterfaceClass") != printerClass ||
        contentOf(entry / "bInterfaceProtocol") == networkPrinting) {
      continue;
    }
    std::error_code error;
    const auto driver = fs::read_symlink(entry / "driver", error).filename();
    if (driver == "usbfs") {
      const fs::path node = ownNodeOf(fs::canonical(entry, error).parent_path(), roots);
      fail(UsbError::HeldByPrintSystem, wanted + ": in use by " + holderInWords(node));
    }
    if (driver.empty()) {
      const bool isLoaded = fs::exists(roots.sys / "module/usblp", error);
      fail(isLoaded ? UsbError::TakenFromDriver : UsbError::NoDriver, wanted);
    }
  }
}

// Returns whether a USB hub has switched off the power of a port because of too much current. In
// the system's folders, each port of a hub has a file that counts such events.
bool hasHubDroppedOne(const UsbRoots& roots) {
  for (const fs::path& entry : entriesOf(roots.sys / "bus/usb/devices")) {
    for (const fs::path& port : entriesOf(entry)) {
      const std::string count = contentOf(port / "over_current_count");
      if (!count.empty() && count != "0") {
        return true;
      }
    }
  }
  return false;
}

[[noreturn]] void failNotFound(std::string_view place, const std::vector<UsbPrinter>& printers,
                               const UsbRoots& roots) {
  const std::string wanted = place.empty() ? "a USB printer" : "usb:" + std::string(place);
  failIfUnserved(wanted, roots);
  if (printers.empty() && hasHubDroppedOne(roots)) {
    fail(UsbError::DroppedByHub, wanted);
  }
  fail(UsbError::NotPluggedIn,
       wanted + (printers.empty() ? "" : " (plugged in: " + listed(printers, printers) + ")"));
}

}  // namespace

const std::error_category& usbCategory() {
  static const UsbCategory category;
  return category;
}

bool UsbPrinter::isSameDevice(const UsbPrinter& other) const {
  return vendor == other.vendor && product == other.product && serial == other.serial &&
         maker == other.maker && model == other.model && (!serial.empty() || node == other.node);
}

std::string UsbPrinter::makerAndModel() const {
  return maker + (maker.empty() || model.empty() ? "" : " ") + model;
}

std::string textOf(const UsbPrinter& printer, const std::vector<UsbPrinter>& printers) {
  const std::string& serial = printer.serial;
  const bool isPlain = !serial.empty() && !serial.starts_with('/');
  const bool isNamedBySerial =
      isPlain && std::count_if(printers.begin(), printers.end(), [&](const UsbPrinter& other) {
                   return isChosen(other, serial);
                 }) == 1;
  return spec::deviceText("usb", isNamedBySerial ? serial : printer.node.string());
}

std::vector<UsbPrinter> usbPrinters(const UsbRoots& roots) {
  std::vector<UsbPrinter> printers;
  for (const fs::path& entry : entriesOf(roots.sys / "class/usbmisc")) {
    if (entry.filename().string().starts_with("lp")) {
      printers.push_back(printerAt(entry, roots));
    }
  }
  std::sort(printers.begin(), printers.end(), comesBefore);
  return printers;
}

UsbPrinter findUsbPrinter(std::string_view place, const UsbRoots& roots) {
  const std::vector<UsbPrinter> printers = usbPrinters(roots);
  std::vector<UsbPrinter> chosen;
  std::copy_if(printers.begin(), printers.end(), std::back_inserter(chosen),
               [&](const UsbPrinter& printer) { return isChosen(printer, place); });
  if (chosen.empty()) {
    failNotFound(place, printers, roots);
  }
  if (chosen.size() > 1) {
    fail(UsbError::Ambiguous, "name one of " + listed(chosen, printers));
  }
  return chosen.front();
}

}  // namespace quordalvane::posix
