#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <quordalvane/QuorExport.h>

#include "platform/NSStream.h"
#include "platform/ProofKind.h"

namespace quordalvane {

/// An open connection to an accessory, with its two streams. Destroying the session ends the
/// connection and releases the link. The destructor may wait, for a few seconds at most, until the
/// device has taken the bytes that were written.
class QUOR_EXPORT EASession {
 public:
  virtual ~EASession() = default;

  /// Return the session's streams, never null and always the same. A stream exists as long as the
  /// session or a pointer to the stream exists.
  /// @{
  virtual std::shared_ptr<NSInputStream> inputStream() = 0;
  virtual std::shared_ptr<NSOutputStream> outputStream() = 0;
  /// @}

  /// Makes the session end without waiting until the device has taken the bytes that were written.
  /// The bytes that it has not taken may be lost. The default does nothing, which is right if the
  /// sessions of a back end close without waiting.
  virtual void abandon() {}
};

/// One accessory that is attached to the device. Its identifying texts do not change; a missing
/// text is null. Any thread may call the functions.
class QUOR_EXPORT EAAccessory {
 public:
  virtual ~EAAccessory() = default;

  /// Returns the name that people know the accessory by. A port name may select the accessory by
  /// exactly this text.
  virtual std::optional<std::string> name() = 0;

  /// Returns the serial number. A port name may select the accessory by exactly this text.
  virtual std::optional<std::string> serialNumber() = 0;

  /// Returns the model number. A port ignores accessories whose model number begins with "KLT" and
  /// ends in "-U".
  virtual std::optional<std::string> modelNumber() = 0;

  /// Returns the maker. A port ignores accessories of any maker except "quor dalvane"; the letter
  /// case does not matter.
  virtual std::optional<std::string> manufacturer() = 0;

  /// Returns the protocols on which sessions can be opened. A port opens its session on
  /// "com.quordalvane.receipt", and ignores accessories without this protocol.
  virtual std::vector<std::string> protocolStrings() = 0;

  /// Returns a number that distinguishes the accessories of the process; 0 if the accessory has no
  /// number. A port does not use this number; it only passes it on to programs.
  virtual std::uint64_t connectionID() = 0;

  /// Returns how the printer confirms print jobs, if this is configured; otherwise `Auto`. Jobs use
  /// this setting; ports do not.
  virtual ProofKind proof() { return ProofKind::Auto; }

  /// Returns a text for people with the accessory's name and, if it has one, its Bluetooth address.
  /// The first part of the text that looks like an address counts as the accessory's address. So
  /// the address must precede any other part of the text that could look like an address.
  virtual std::string description() = 0;

  /// Returns false if the link is lost (end of stream, error or hang-up) and all bytes that arrived
  /// before the loss were read. Returns true for an accessory without a session.
  virtual bool isConnected() = 0;

  /// Called by code that waits for the loss of the link and reads nothing. If the link is lost,
  /// unread bytes no longer make `isConnected` return true. If the link is not lost, this call has
  /// no effect. The default does nothing, which is right for back ends that keep no unread bytes
  /// after the link is lost.
  virtual void noticeLoss() {}

  /// Opens a session on `protocol`. Returns null if the accessory cannot be reached or refuses the
  /// session. May block for the connect time-out of the link.
  virtual std::shared_ptr<EASession> openSession(const std::string& protocol) = 0;
};

/// Lists the accessories that are attached now. Any thread may call the functions.
class QUOR_EXPORT EAAccessoryManager {
 public:
  virtual ~EAAccessoryManager() = default;

  /// Returns the accessories. The list may be empty, and contains no null. The order matters: a
  /// port takes the first accessory that it can use.
  virtual std::vector<std::shared_ptr<EAAccessory>> connectedAccessories() = 0;

  /// Returns true if the platform has its own way to read an accessory's Bluetooth address.
  virtual bool readsAddresses() { return false; }

  /// Returns the accessory's Bluetooth address, or "". Called only if `readsAddresses` returns
  /// true.
  virtual std::string addressOf(EAAccessory& /*accessory*/) { return ""; }
};

}  // namespace quordalvane
