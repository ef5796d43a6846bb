#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <system_error>

#include "backends/AccessoryIdentity.h"
#include "backends/posix/Descriptor.h"
#include "backends/posix/Link.h"

namespace quordalvane::posix {

/// Connects to a device and returns the descriptor of the connection. Throws a `std::exception`,
/// with a message for people, on failure.
using Connector = std::function<Descriptor()>;

/// An accessory that is reached through a descriptor. Each session opens its own connection, and
/// `isConnected` refers to the newest connection. Before the first session the accessory counts as
/// connected.
class LinkAccessory : public IdentifiedAccessory {
 public:
  /// `openSession` calls `connect` on the thread of its caller.
  LinkAccessory(AccessoryIdentity identity, Connector connect);

  bool isConnected() override;
  void noticeLoss() override;

  /// Connects and returns the session. Returns null if the connection fails or the accessory does
  /// not announce `protocol`.
  std::shared_ptr<EASession> openSession(const std::string& protocol) override;

  /// Returns, as a text for people, why the latest `openSession` returned null; "" if the latest
  /// call succeeded or there was no call.
  virtual std::string lastError();

  /// Returns the error code of the reason that `lastError` returns; 0 if the reason has no code.
  virtual std::error_code lastErrorCode();

  /// Returns, as a text for people, why a USB printer does not print, for example "paper out". The
  /// printer's USB port reports the reason even if the printer does not answer. Returns "" if the
  /// USB port reports nothing, if the newest session has ended, and for all other devices.
  std::string portState();

 private:
  std::shared_ptr<EASession> failed(std::string why, std::error_code code = {});

  const Connector connect_;

  std::mutex mutex_;              // guards the members below
  std::shared_ptr<Link> newest_;  // the link of the newest session, kept after the session's end
  std::string lastError_;
  std::error_code lastErrorCode_;
};

}  // namespace quordalvane::posix
