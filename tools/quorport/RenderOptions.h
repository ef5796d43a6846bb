#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace quordalvane::tool {

/// The kind of a file, and the commands printed around it.
struct RenderOptions {
  enum class Content { Bytes, Text, Picture, TestPage };

  Content content = Content::Bytes;
  std::uint32_t width = 576;            ///< of the paper, in dots
  std::optional<std::string> codePage;  ///< the text that render::CodePage reads; empty means ASCII
                                        ///< only
  bool isOrdered = false;               ///< grey as an ordered pattern, not by error diffusion
  bool cut = false;
  std::optional<std::uint32_t> drawer;  ///< 1 or 2; empty: no drawer opens
  bool drawerAfter = false;
};

}  // namespace quordalvane::tool
