#pragma once

#include <stdexcept>
#include <string>

namespace quordalvane::handheld {

/// Thrown instead of a framework's exception, whose text it contains.
class FrameworkError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Throws a `FrameworkError` with `text`, unless the text is empty. This function is compiled as
/// C++. The caller's Objective-C handlers have ended before the call, so the exception does not
/// pass through them.
void throwIfRaised(const std::string& text);

}  // namespace quordalvane::handheld
