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

/// An accessory whose printer is in this process and uses a clock of the caller's choice.
class VirtualAccessory : public IdentifiedAccessory {
 public:
  /// `clock` must outlive the accessory and its sessions. Each session's link begins with `faults`.
  VirtualAccessory(AccessoryIdentity identity, std::unique_ptr<simulator::VirtualPrinter> printer,
                   Clock& clock, simulator::Faults faults = {});

  bool isConnected() override;
  void noticeLoss() override;

  /// A new connection to the printer, which ends the previous one. Null unless `protocol` is one of
  /// the accessory's.
  std::shared_ptr<EASession> openSession(const std::string& protocol) override;

  /// Lets the printer work up to now, then lets `look` read or change it; `look` must not call back
  /// here. Any thread.
  void withPrinter(const std::function<void(simulator::VirtualPrinter&, simulator::Instant)>& look);

 protected:
  PrinterInside& inside() { return *inside_; }

 private:
  const std::shared_ptr<PrinterInside> inside_;
  Clock& clock_;
  std::mutex mutex_;
  std::weak_ptr<VirtualLink> link_;  // of the newest session
};

/// Makes an accessory of a printer that `options` describe: its state by the names of the status
/// record's flags, and its settings and faults. Throws std::invalid_argument, with a text that
/// names the key and the values it takes.
std::shared_ptr<VirtualAccessory> makePrinterAccessory(
    AccessoryIdentity identity, const std::vector<std::pair<std::string, std::string>>& options,
    Clock& clock);

}  // namespace quordalvane::virtuals
