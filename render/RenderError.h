#pragma once

#include <stdexcept>

namespace quordalvane::render {

/// A text, a picture or a setting that cannot be rendered. The text is for people: what was wrong,
/// and what would be right.
class RenderError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace quordalvane::render
