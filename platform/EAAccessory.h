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

/// An open conversation with an accessory: its two streams. Destroying the session ends the
/// conversation and releases the link; that may wait for the device to take the bytes that are
/// under way, for a few seconds at most.
class QUOR_EXPORT EASession {
 public:
  virtual ~EASession() = default;

  /// The session's streams, never null and the same at each call. They live as long as the session
  /// or the returned pointer, whichever is longer.
  /// @{
  virtual std::shared_ptr<NSInputStream> inputStream() = 0;
  virtual std::shared_ptr<NSOutputStream> outputStream() = 0;
  /// @}

  /// Makes the end of the session wait for nothing: the bytes under way are not wanted any more. A
  /// back end whose sessions end at once does nothing here.
  virtual void abandon() {}
};

/// One accessory that the device has attached. The identifying texts do not change; a missing one
/// is an empty optional. All calls may be made from any thread.
class QUOR_EXPORT EAAccessory {
 public:
  virtual ~EAAccessory() = default;

  /// The name that people know it by. A port name designates it by this text, letter for letter.
  virtual std::optional<std::string> name() = 0;

  /// Its serial number, by which a port name may designate it as well, letter for letter.
  virtual std::optional<std::string> serialNumber() = 0;

  /// Its model. A port passes over those that begin with "KLT" and end in "-U".
  virtual std::optional<std::string> modelNumber() = 0;

  /// Its maker. A port passes over all but "quor dalvane", in upper or lower case.
  virtual std::optional<std::string> manufacturer() = 0;

  /// The protocols on which it takes sessions. A port passes over an accessory that has not
  /// "com.quordalvane.receipt" among them, and opens its session on that one.
  virtual std::vector<std::string> protocolStrings() = 0;

  /// A number that distinguishes it from the other accessories of the process, for programs: a port
  /// only hands it on. 0 if it has no number.
  virtual std::uint64_t connectionID() = 0;

  /// How its printer confirms print jobs, if its owner has said so; otherwise `Auto`. A port does
  /// not ask for it.
  virtual ProofKind proof() { return ProofKind::Auto; }

  /// A text for people that names the accessory and shows its Bluetooth address, if it has one. The
  /// first text in it that looks like an address is taken for the accessory's, so the address
  /// precedes everything that could look like one.
  virtual std::string description() = 0;

  /// False once the link is lost (end of stream, error or hang-up) and no byte that arrived before
  /// is left to read. True for an accessory without a session.
  virtual bool isConnected() = 0;

  /// For a caller that waits for the link's end and reads nothing: if the link is lost by now,
  /// bytes that are still unread no longer make `isConnected` return true. Has no effect on a link
  /// that works. A back end that never keeps bytes beyond the end does nothing here.
  virtual void noticeLoss() {}

  /// Opens a session on `protocol`, or returns null when the accessory cannot be reached or
  /// refuses. May block for the link's own connect time-out.
  virtual std::shared_ptr<EASession> openSession(const std::string& protocol) = 0;
};

/// The accessories that are attached now. All calls may be made from any thread.
class QUOR_EXPORT EAAccessoryManager {
 public:
  virtual ~EAAccessoryManager() = default;

  /// The accessories, never null; empty if there are no accessories. Their order counts: a port
  /// takes the first that suits it.
  virtual std::vector<std::shared_ptr<EAAccessory>> connectedAccessories() = 0;

  /// Whether the platform has a way of its own to read an accessory's Bluetooth address.
  virtual bool readsAddresses() { return false; }

  /// The accessory's Bluetooth address, or "". Asked only if `readsAddresses` returns true.
  virtual std::string addressOf(EAAccessory& /*accessory*/) { return ""; }
};

}  // namespace quordalvane
