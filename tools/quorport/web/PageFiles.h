#pragma once

#include <span>
#include <string_view>

namespace quordalvane::tool {

/// A file of the page, from the folder `page`.
struct PageFile {
  std::string_view name;
  std::string_view content;
};

/// Returns all files of the page; they are embedded when the program is built.
std::span<const PageFile> pageFiles();

/// Returns the media type of a file by its name; empty if the type is unknown.
std::string_view typeOf(std::string_view name);

}  // namespace quordalvane::tool
