#pragma once

#include <optional>
#include <string>

#include "tools/quorport/simulate/Listener.h"

namespace quordalvane::tool {

/// A terminal of the system's own making, whose other side hosts open like a serial line.
///
/// Opening a terminal does not show on our side, so there is always a connection: it ends when the
/// last host that has sent anything closes the terminal, and the next one begins at once. A printer
/// that drops the link takes the terminal away, the only thing that a host notices, and there is a
/// new one under another name.
class PtyListener : public Listener {
 public:
  /// Throws std::system_error if the system has no terminal left.
  PtyListener() { openTerminal(); }

  std::string place() const override { return "serial:" + path_; }
  int descriptor() const override { return terminal_->number(); }
  bool hostsQueue() const override { return false; }
  std::unique_ptr<Line> accept() override;
  void resume(bool dropped) override;

 private:
  void openTerminal();

  std::optional<posix::Descriptor> terminal_;
  std::string path_;
};

}  // namespace quordalvane::tool
