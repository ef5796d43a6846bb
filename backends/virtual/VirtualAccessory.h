#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "backends/AccessoryIdentity.h"
#include "backends/virtual/VirtualLink.h"
#include "platform/Clock.h"
#include "simulator/VirtualPrinter.h"

namespace quordalvane::virtuals {

/// An accessory with a simulated printer, which runs in this process and uses the caller's clock.
class VirtualAccessory : public IdentifiedAccessory {
 public:
  /// `clock` must outlive the accessory and its sessions. The link of each new session begins with
  /// `faults`.
  VirtualAccessory(AccessoryIdentity identity, std::unique_ptr<simulator::VirtualPrinter> printer,
                   Clock& clock, simulator::Faults faults = {});

  bool isConnected() override;
  void noticeLoss() override;

  /// Opens a new connection to the printer, and ends the previous one. Returns null if the
  /// accessory does not announce `protocol`.
  std::shared_ptr<EASession> openSession(const std::string& protocol) override;

  /// Advances the simulated printer to the current time, and then calls `look`, which may read or
  /// change the printer. `look` must not call this object. Any thread may call `withPrinter`.
  void withPrinter(const std::function<void(simulator::VirtualPrinter&, simulator::Instant)>& look);

 protected:
  PrinterInside& inside() { return *inside_; }

 private:
  const std::shared_ptr<PrinterInside> inside_;
  Clock& clock_;
  std::mutex mutex_;
  std::weak_ptr<VirtualLink> link_;  // the link of the newest session
};

/// Creates an accessory with a simulated printer. `options` set the flags (by their names in the
/// status record), the settings and the faults of the printer. Throws std::invalid_argument for an
/// invalid option; the message names the key and the values that are valid for this key.
std::shared_ptr<VirtualAccessory> makePrinterAccessory(
    AccessoryIdentity identity, const std::vector<std::pair<std::string, std::string>>& options,
    Clock& clock);

}  // namespace quordalvane::virtuals
