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
/// with a message for people, if it cannot connect.
using Connector = std::function<Descriptor()>;

/// An accessory that is reached through a descriptor. Each session opens its own connection, and
/// `isConnected` refers to the newest one. Before the first session the accessory counts as
/// attached.
class LinkAccessory : public IdentifiedAccessory {
 public:
  /// `openSession` calls `connect` on its own thread.
  LinkAccessory(AccessoryIdentity identity, Connector connect);

  bool isConnected() override;
  void noticeLoss() override;

  /// Connects and returns the session. Returns null if it cannot connect or the accessory does not
  /// announce `protocol`.
  std::shared_ptr<EASession> openSession(const std::string& protocol) override;

  /// Returns, as a text for people, why the latest `openSession` returned null; "" if it did not
  /// return null or was never called.
  virtual std::string lastError();

  /// Returns the error code of this reason; 0 if it has no code.
  virtual std::error_code lastErrorCode();

  /// Returns, as a text for people, why the device of the newest session does not print, as its
  /// port reports it. Returns "" if the port reports nothing or the session has ended.
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
