// Suppresses findings of the sanitizers in GNUstep and in the language's runtime. Leaks and races
// of our own code are still reported.

#import <Foundation/Foundation.h>

#include <gtest/gtest.h>

// This file defines the first two functions, and the sanitizers call them. The sanitizers define
// the last two functions, which are null in a build without sanitizers.
extern "C" {
const char* __lsan_default_suppressions();
const char* __tsan_default_suppressions();
__attribute__((weak)) void __lsan_disable();
__attribute__((weak)) void __lsan_enable();
}

// The runtime fills tables while classes are loaded, and keeps these tables until the process ends.
const char* __lsan_default_suppressions() {
  return "leak:objc_malloc\nleak:class_copyMethodList\n";
}

// When a class is used for the first time, the runtime and GNUstep take two of their locks in
// either order.
const char* __tsan_default_suppressions() {
  return "deadlock:objc_mutex_lock\ndeadlock:libgnustep-base.so\n";
}

namespace {

/// Makes GNUstep allocate the objects that it keeps, before the sanitizer checks.
class ThingsThatGNUstepKeeps : public testing::Environment {
 public:
  void SetUp() override {
    if (__lsan_disable == nullptr) {
      return;
    }
    __lsan_disable();
    @autoreleasepool {
      [NSPort port];    // makes the registry of all ports
      [NSArray array];  // makes the shared empty array
    }
    __lsan_enable();
  }
};

[[maybe_unused]] const auto* const environment =
    testing::AddGlobalTestEnvironment(new ThingsThatGNUstepKeeps);

}  // namespace
