#pragma once

#include <stdexcept>

namespace quordalvane::render {

/// Thrown if a text, a picture or a setting cannot be rendered. The message is for people; it names
/// the fault and the right form.
class RenderError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

}  // namespace quordalvane::render
