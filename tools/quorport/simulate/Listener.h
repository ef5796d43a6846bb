#pragma once

#include <memory>
#include <string>

#include "tools/quorport/simulate/Line.h"

namespace quordalvane::tool {

/// An address at which hosts connect to the printer.
class Listener {
 public:
  virtual ~Listener() = default;

  /// Returns the address as a device text, which is the form that the option --device reads.
  virtual std::string place() const = 0;

  /// Returns the descriptor that becomes readable when a host connects.
  virtual int descriptor() const = 0;

  /// Returns true if the descriptor becomes readable only when another host waits for its turn, and
  /// not when the current one sends data.
  virtual bool hostsQueue() const = 0;

  /// Returns the connection of the next host; null if there is none yet. Does not wait. Throws
  /// std::system_error if the address can no longer be used.
  virtual std::unique_ptr<Line> accept() = 0;

  /// To be called after the last accepted connection has ended and its Line is destroyed. `dropped`
  /// means that the printer ended the connection. In this case, this function may replace the
  /// address by a new one. The host notices the end of the connection because the old address has
  /// disappeared. Throws std::system_error if the address cannot be opened again.
  virtual void resume(bool dropped) = 0;
};

/// Opens the address in a text like tcp:HOST:PORT, unix:PATH or pty:. Throws a CommandFailure: with
/// ExitCode::Usage for a text of another form, with ExitCode::ExchangeFailed if the address cannot
/// be opened.
std::unique_ptr<Listener> listenAt(const std::string& text);

/// Opens an address for browsers, from a text like PORT or HOST:PORT; throws as `listenAt` does.
std::unique_ptr<Listener> listenForBrowsersAt(const std::string& text);

/// Opens a socket to which only its owner can connect, from a text like unix:PATH; throws as
/// `listenAt` does. `option` is the option that contained the text.
std::unique_ptr<Listener> listenPrivatelyAt(const std::string& text, const std::string& option);

}  // namespace quordalvane::tool
