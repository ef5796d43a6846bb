#pragma once

#include <stdexcept>
#include <string>

namespace quordalvane::handheld {

/// An exception that a framework raised, as text.
class FrameworkError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Throws a `FrameworkError` of `text`, unless it is empty. Compiled as C++, so that the exception
/// starts outside of Objective-C, whose handlers in the caller have ended by then.
void throwIfRaised(const std::string& text);

}  // namespace quordalvane::handheld
