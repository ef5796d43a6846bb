#include "discovery/SerialLines.h"

#include <algorithm>

#include "backends/SpecText.h"
#include "backends/posix/SystemFiles.h"

namespace quordalvane {
namespace {

namespace fs = std::filesystem;

// In the system's folders, the folder of a USB device is at most this many levels above the folder
// of its serial line. The folders of an interface and a port are between these two.
constexpr int highest = 4;

// Returns whether the serial line has hardware. Consoles and pseudo-terminals have no hardware. The
// driver of classic serial ports creates lines even for ports that do not exist.
bool hasHardware(const fs::path& entry) {
  constexpr auto noHardware = "0";
  std::error_code error;
  return fs::exists(entry / "device", error) && posix::contentOf(entry / "type") != noHardware;
}

// Returns the folder of the USB device that the serial line belongs to; empty if the line is not
// part of a USB device.
fs::path usbDeviceOf(const fs::path& entry) {
  std::error_code error;
  fs::path folder = fs::canonical(entry / "device", error);
  for (int level = 0; !error && level < highest; ++level, folder = folder.parent_path()) {
    if (fs::exists(folder / "idVendor", error)) {
      return folder;
    }
  }
  return {};
}

// Returns the permanent name of `node`: a link whose name does not change when the device is
// plugged into another socket. Returns `node` itself if there is no such link.
fs::path lastingNameOf(const fs::path& node, const SerialRoots& roots) {
  std::vector<fs::path> links = posix::entriesOf(roots.dev / "serial/by-id");
  std::sort(links.begin(), links.end());
  for (const fs::path& link : links) {
    std::error_code error;
    if (fs::equivalent(link, node, error)) {
      return link;
    }
  }
  return node;
}

FoundDevice found(const fs::path& entry, const SerialRoots& roots) {
  const fs::path node = roots.dev / entry.filename();
  const fs::path device = usbDeviceOf(entry);
  FoundDevice line{.device = spec::deviceText("serial", lastingNameOf(node, roots).string()),
                   .name = "serial line " + shownText(entry.filename().string()),
                   .serialNumber = "",
                   .maker = "",
                   .model = "",
                   .via = Via::Serial,
                   .reachable = std::nullopt};
  if (!device.empty()) {
    line.maker = shownText(posix::contentOf(device / "manufacturer"));
    line.model = shownText(posix::contentOf(device / "product"));
    line.serialNumber = shownText(posix::contentOf(device / "serial"));
    line.name += line.model.empty() ? "" : " at " + line.model;
  }
  return line;
}

}  // namespace

std::vector<FoundDevice> serialLines(const SerialRoots& roots) {
  std::vector<fs::path> entries = posix::entriesOf(roots.sys / "class/tty");
  std::sort(entries.begin(), entries.end());
  std::vector<FoundDevice> lines;
  for (const fs::path& entry : entries) {
    if (hasHardware(entry)) {
      lines.push_back(found(entry, roots));
    }
  }
  return lines;
}

}  // namespace quordalvane
