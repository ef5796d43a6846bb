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

/// Makes a connection and returns its descriptor; throws a `std::exception` whose text explains to
/// people why there is none.
using Connector = std::function<Descriptor()>;

/// An accessory that is reached through a descriptor. It counts as attached before anything is
/// connected; each session makes a connection of its own, and `isConnected` is about the newest
/// one.
class LinkAccessory : public IdentifiedAccessory {
 public:
  /// `connect` is called by `openSession`, on its thread.
  LinkAccessory(AccessoryIdentity identity, Connector connect);

  bool isConnected() override;
  void noticeLoss() override;

  /// Connects. Null if that fails or the accessory does not announce `protocol`.
  std::shared_ptr<EASession> openSession(const std::string& protocol) override;

  /// Why the latest `openSession` returned null, for people; "" if it did not or was never called.
  virtual std::string lastError();

  /// The code of the same, if the reason has one; otherwise 0.
  virtual std::error_code lastErrorCode();

  /// What keeps the device of the newest session from printing, as its port reports it, for people;
  /// "" if it reports nothing or the session has ended.
  std::string portState();

 private:
  std::shared_ptr<EASession> failed(std::string why, std::error_code code = {});

  const Connector connect_;

  std::mutex mutex_;              // guards the members below
  std::shared_ptr<Link> newest_;  // of the newest session, and kept after its end
  std::string lastError_;
  std::error_code lastErrorCode_;
};

}  // namespace quordalvane::posix
