#pragma once

#include <optional>
#include <string>

#include "tools/quorport/simulate/Listener.h"

namespace quordalvane::tool {

/// A pseudo-terminal. Hosts open the terminal's other side as if it were a serial line.
///
/// This side does not see when the other side is opened, so there is always a connection. When one
/// or more hosts have sent data and all hosts have closed the terminal, the connection ends, and
/// the next connection begins immediately. A host notices a dropped link only if its terminal
/// disappears. If the printer drops the link, the terminal is therefore removed, and a new one with
/// another name is created.
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
