#pragma once

#include <string>

namespace quordalvane::tool {

/// A line on a terminal that is rewritten in place and removed at the end. Shows nothing if the
/// descriptor is not a terminal.
class LiveLine {
 public:
  explicit LiveLine(int descriptor);
  ~LiveLine() { hide(); }
  LiveLine(const LiveLine&) = delete;
  LiveLine& operator=(const LiveLine&) = delete;

  /// Shows `text` instead of the previous text, shortened to the width of the terminal.
  void show(const std::string& text);

  /// Removes the line, so that other text can be written.
  void hide();

 private:
  const int descriptor_;
  const bool isTerminal_;
};

}  // namespace quordalvane::tool
