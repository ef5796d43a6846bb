#pragma once

#include <string>

namespace quordalvane::tool {

/// One line on a terminal that is rewritten in place, and is removed at the end. If the descriptor
/// is no terminal nothing is shown.
class LiveLine {
 public:
  explicit LiveLine(int descriptor);
  ~LiveLine() { hide(); }
  LiveLine(const LiveLine&) = delete;
  LiveLine& operator=(const LiveLine&) = delete;

  /// Shows `text` instead of the previous text, cut short at the terminal's width.
  void show(const std::string& text);

  /// Removes the line, so that other text can be written.
  void hide();

 private:
  const int descriptor_;
  const bool isTerminal_;
};

}  // namespace quordalvane::tool
