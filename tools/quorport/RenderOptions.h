#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace quordalvane::tool {

/// How a file is printed: its kind, the paper, and the commands that are sent before and after the
/// file.
struct RenderOptions {
  enum class Content { Bytes, Text, Picture, TestPage };

  Content content = Content::Bytes;
  std::uint32_t width = 576;  ///< the width of the paper in dots
  /// The code page, as render::CodePage reads it. Empty means ASCII only.
  std::optional<std::string> codePage;
  /// How grey is printed: true means an ordered pattern of dots, false means error diffusion.
  bool isOrdered = false;
  bool cut = false;
  std::optional<std::uint32_t> drawer;  ///< the number of the drawer, 1 or 2; empty means none
  bool drawerAfter = false;
};

}  // namespace quordalvane::tool
