#pragma once

#include <stdexcept>
#include <string>

namespace quordalvane::handheld {

/// Thrown instead of an exception of a framework; contains its text.
class FrameworkError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Throws a `FrameworkError` with `text`, unless the text is empty. It is compiled as C++, so that
/// the exception is thrown outside the Objective-C handlers of the caller, which have ended by
/// then.
void throwIfRaised(const std::string& text);

}  // namespace quordalvane::handheld
