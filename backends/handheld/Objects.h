#pragma once

#import <Foundation/Foundation.h>

#include <optional>
#include <string>
#include <type_traits>
#include <utility>

#include "backends/handheld/FrameworkError.h"

// Only Objective-C++ sources include this header. It lets C++ objects own the frameworks' objects
// and call their methods.

#if __has_feature(objc_arc)
#error "Turn automatic reference counting off for this folder: its sources release objects."
#endif

namespace quordalvane::handheld {

/// Owns one reference to an object of a framework, or to nil.
template <typename Object>
class Retained {
 public:
  /// Adds its own reference to `object`.
  explicit Retained(Object* object = nil) : object_([object retain]) {}

  /// Takes over the reference that `alloc` or `copy` returned.
  static Retained adopting(Object* object) {
    Retained adopted;
    adopted.object_ = object;
    return adopted;
  }

  Retained(Retained&& other) noexcept : object_(std::exchange(other.object_, nil)) {}
  Retained& operator=(Retained&& other) noexcept {
    std::swap(object_, other.object_);
    return *this;
  }
  Retained(const Retained&) = delete;
  Retained& operator=(const Retained&) = delete;
  ~Retained() { [object_ release]; }

  Object* get() const { return object_; }

 private:
  Object* object_;
};

/// Returns the text, or nullopt for nil.
inline std::optional<std::string> textOf(NSString* text) {
  const char* const characters = [text UTF8String];
  return characters != nullptr ? std::optional<std::string>(characters) : std::nullopt;
}

/// Returns a text for people about an exception of a framework; never empty.
inline std::string textOf(NSException* exception) {
  return textOf([exception name]).value_or("exception") + ": " +
         textOf([exception reason]).value_or("no reason given");
}

/// Returns `text` as a string for the frameworks. The current autorelease pool owns it.
inline NSString* stringOf(const std::string& text) {
  return [NSString stringWithUTF8String:text.c_str()];
}

/// Runs `question`, which calls a framework, in an autorelease pool of its own, and returns the
/// answer of `question`. If the framework raises an exception, `ask` throws a `FrameworkError`. So
/// no exception passes from Objective-C code through C++ code.
template <typename Question>
auto ask(Question question) {
  using Answer = std::invoke_result_t<Question>;
  std::conditional_t<std::is_void_v<Answer>, bool, Answer> answer{};
  std::string raised;
  @autoreleasepool {
    @try {
      if constexpr (std::is_void_v<Answer>) {
        question();
      } else {
        answer = question();
      }
    } @catch (NSException* exception) {
      raised = textOf(exception);
    }
  }
  throwIfRaised(raised);
  return static_cast<Answer>(std::move(answer));
}

}  // namespace quordalvane::handheld
