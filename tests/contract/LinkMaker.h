#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "platform/EAAccessory.h"
#include "platform/Platform.h"

namespace quordalvane::contract {

using Bytes = std::vector<std::uint8_t>;

/// The device's end of one link, played by a test.
class Peer {
 public:
  virtual ~Peer() = default;

  /// Sends all of `bytes`. They must fit into the buffers of the link.
  virtual void write(const Bytes& bytes) = 0;

  /// Sends one byte, even if nobody reads it.
  virtual void say(std::uint8_t byte) = 0;

  /// Takes and returns `count` bytes, or fewer if the link ends or a generous time passes first.
  virtual Bytes read(std::size_t count) = 0;

  /// Makes the device accept no more bytes until the next `read`.
  virtual void stall() = 0;

  /// Ends the link in good order.
  virtual void close() = 0;

  /// Ends only the direction from the device. Only for links whose directions end separately.
  virtual void closeWriting() = 0;

  /// Ends the link abruptly. Only for links that can be reset.
  virtual void reset() = 0;
};

/// Abilities that only some kinds of links have.
struct LinkTraits {
  bool takesEveryByte = true;    ///< the device executes no byte as a command
  bool keepsUnreadBytes = true;  ///< earlier bytes can be read after the link's end
  bool closesOneWay = true;
  bool resets = true;
  bool linksAnew = true;         ///< each session makes a new link
  bool standsSideBySide = true;  ///< a new session does not end the session before it
  bool knowsWhatIsOwed = true;   ///< the link knows if a reply is still to be expected
  bool endsForTheDevice = true;  ///< the device learns of the end of a session
};

/// One kind of link: the accessory under test, and the device's end of its sessions.
class LinkMaker {
 public:
  virtual ~LinkMaker() = default;

  virtual LinkTraits traits() const = 0;
  virtual Platform& platform() = 0;
  virtual std::shared_ptr<EAAccessory> accessory() = 0;

  /// Returns the device's end of the session that was opened last. To be called exactly once for
  /// each session.
  virtual std::unique_ptr<Peer> peer() = 0;

  /// Runs `routine` on the thread on whose run loop the streams are scheduled.
  virtual void onStreamThread(const std::function<void()>& routine) { routine(); }
};

/// A parameter of the suite.
struct LinkKind {
  std::string name;
  std::function<std::unique_ptr<LinkMaker>()> make;
};

/// For the test framework's messages.
inline void PrintTo(const LinkKind& kind, std::ostream* out) {
  *out << kind.name;
}

}  // namespace quordalvane::contract
