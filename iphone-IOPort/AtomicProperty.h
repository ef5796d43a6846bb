#pragma once

#include <mutex>
#include <utility>

namespace quordalvane {

/// An object-valued property that threads may read and write at once: a reader gets the old or the
/// new value, whole.
template <typename Value>
class AtomicProperty {
 public:
  /// Begins with the type's own first value, or with `value`.
  /// @{
  AtomicProperty() = default;
  explicit AtomicProperty(Value value) : value_(std::move(value)) {}
  /// @}

  /// A copy of the value.
  Value get() const {
    const std::lock_guard lock(mutex_);
    return value_;
  }

  /// The old value is released after the lock: its destructor may run code that asks for this
  /// property.
  void set(Value value) {
    const std::lock_guard lock(mutex_);
    std::swap(value_, value);
  }

  /// Changes the value in place; `change` must not touch the property itself.
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
