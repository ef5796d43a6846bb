#pragma once

#include <mutex>
#include <utility>

namespace quordalvane {

/// A property that several threads may read and write at the same time. A reader gets the old value
/// or the new value, never a mixture.
template <typename Value>
class AtomicProperty {
 public:
  /// The initial value is `value`. Without an argument, the default constructor of the type makes
  /// the initial value.
  /// @{
  AtomicProperty() = default;
  explicit AtomicProperty(Value value) : value_(std::move(value)) {}
  /// @}

  /// Returns a copy of the value.
  Value get() const {
    const std::lock_guard lock(mutex_);
    return value_;
  }

  /// Replaces the value. The old value is destroyed after the lock is released, because its
  /// destructor may run code that reads this property.
  void set(Value value) {
    const std::lock_guard lock(mutex_);
    std::swap(value_, value);
  }

  /// Calls `change` with the value. `change` may modify the value in place, but must not use the
  /// property itself.
  template <typename Change>
  void update(Change change) {
    const std::lock_guard lock(mutex_);
    change(value_);
  }

 private:
  mutable std::mutex mutex_;
  Value value_{};
};

}  // namespace quordalvane
