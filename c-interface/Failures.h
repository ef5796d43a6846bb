#pragma once

#include <quordalvane/QuorIOPortC.h>

#include <stdexcept>
#include <string>

// Turns C++ exceptions into codes and texts. The library of the journal functions (QuorJournalC.h)
// also uses this header, so quor_last_error returns the error texts of those functions as well.

namespace quordalvane::c {

/// An exception that ends a function of the C interface with a code below 0. Its message becomes
/// the text of quor_last_error.
class QUOR_EXPORT CallFailure : public std::runtime_error {
 public:
  CallFailure(QuorCode code, const std::string& text) : std::runtime_error(text), code_(code) {}
  QuorCode code() const noexcept { return code_; }

 private:
  QuorCode code_;
};

/// Returns the code of the exception that is being handled, and stores the exception's text for
/// quor_last_error.
QUOR_EXPORT QuorCode codeOfCurrentException() noexcept;

/// Calls `body`, which does the work of a function of the C interface and throws on failure.
/// Returns the code for the function's caller: QUOR_OK, the code that `body` returned, or the code
/// of the exception.
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

/// Works as `guarded`, for a function that returns a value instead of a QuorCode. Returns 0 on
/// failure.
template <typename Body>
auto answered(Body body) noexcept -> decltype(body()) {
  try {
    return body();
  } catch (...) {
    codeOfCurrentException();
    return {};
  }
}

/// Throws a CallFailure with the code QUOR_FAILED and with `text`, unless `done` is true.
inline void succeed(bool done, const char* text) {
  if (!done) {
    throw CallFailure(QUOR_FAILED, text);
  }
}

/// Returns the object that the pointer points to. Throws a CallFailure with the code QUOR_USAGE if
/// the pointer is null.
template <typename Pointer>
auto& given(Pointer* pointer, const char* name) {
  if (pointer == nullptr) {
    throw CallFailure(QUOR_USAGE, std::string(name) + " must not be null");
  }
  return *pointer;
}

}  // namespace quordalvane::c
