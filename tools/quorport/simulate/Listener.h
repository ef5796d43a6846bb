#pragma once

#include <memory>
#include <string>

#include "tools/quorport/simulate/Line.h"

namespace quordalvane::tool {

/// A place at which hosts find the printer.
class Listener {
 public:
  virtual ~Listener() = default;

  /// The place as a SPEC of a device.
  virtual std::string place() const = 0;

  /// Becomes readable when a host connects.
  virtual int descriptor() const = 0;

  /// True if the descriptor becomes readable only when a host waits for its turn, and not when the
  /// present one sends.
  virtual bool hostsQueue() const = 0;

  /// The connection of the next host; null if there is none yet. Does not wait. Throws
  /// std::system_error if the place is of no use any more.
  virtual std::unique_ptr<Line> accept() = 0;

  /// The connection that was accepted last has ended, and its Line is destroyed. `dropped`: the
  /// printer ended it, and the host must see that; the place may then be another. Throws
  /// std::system_error if the place cannot be opened again.
  virtual void resume(bool dropped) = 0;
};

/// Opens the place that a text like tcp:HOST:PORT, unix:PATH or pty: names. Throws a
/// CommandFailure: with ExitCode::Usage if the text names none, with ExitCode::ExchangeFailed if it
/// cannot be opened.
std::unique_ptr<Listener> listenAt(const std::string& text);

/// The same for the place of browsers, a text like PORT or HOST:PORT.
std::unique_ptr<Listener> listenForBrowsersAt(const std::string& text);

/// The same for a socket that is for its owner alone; takes unix:PATH only. `option` is what the
/// text was given for.
std::unique_ptr<Listener> listenPrivatelyAt(const std::string& text, const std::string& option);

}  // namespace quordalvane::tool
