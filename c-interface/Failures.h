#pragma once

#include <quordalvane/QuorIOPortC.h>

#include <stdexcept>
#include <string>

// Turns the exceptions of C++ into a code and a text. The library of the journal uses it as well,
// so that quor_last_error explains the latest call of either.

namespace quordalvane::c {

/// Ends a function of the interface with a code below 0 and the text for quor_last_error.
class QUOR_EXPORT CallFailure : public std::runtime_error {
 public:
  CallFailure(QuorCode code, const std::string& text) : std::runtime_error(text), code_(code) {}
  QuorCode code() const noexcept { return code_; }

 private:
  QuorCode code_;
};

/// Keeps the text of the exception that is being handled for quor_last_error and returns its code.
QUOR_EXPORT QuorCode codeOfCurrentException() noexcept;

/// Runs the body of a function of the interface, which returns if it has done its work and throws
/// otherwise.
template <typename Body>
QuorCode guarded(Body body) noexcept {
  try {
    if constexpr (std::is_void_v<decltype(body())>) {
      body();
      return QUOR_OK;
    } else {
      return body();
    }
  } catch (...) {
    return codeOfCurrentException();
  }
}

/// The same for a function that returns a plain value, 0 on failure.
template <typename Body>
auto answered(Body body) noexcept -> decltype(body()) {
  try {
    return body();
  } catch (...) {
    codeOfCurrentException();
    return {};
  }
}

/// Throws QUOR_FAILED with `text` unless `done`.
inline void succeed(bool done, const char* text) {
  if (!done) {
    throw CallFailure(QUOR_FAILED, text);
  }
}

/// The object of a pointer; throws QUOR_USAGE if it is null.
template <typename Pointer>
auto& given(Pointer* pointer, const char* name) {
  if (pointer == nullptr) {
    throw CallFailure(QUOR_USAGE, std::string(name) + " must not be null");
  }
  return *pointer;
}

}  // namespace quordalvane::c
