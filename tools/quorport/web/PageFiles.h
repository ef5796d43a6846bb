#pragma once

#include <span>
#include <string_view>

namespace quordalvane::tool {

/// A file of the page that browsers show, as it is in the folder `page`.
struct PageFile {
  std::string_view name;
  std::string_view content;
};

/// All of them; made from the folder when the program is built.
std::span<const PageFile> pageFiles();

/// The media type of a file of that name; empty if none is known.
std::string_view typeOf(std::string_view name);

}  // namespace quordalvane::tool
