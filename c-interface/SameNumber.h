#pragma once

namespace quordalvane::c {

/// Returns whether a constant of the C interface has the same number as its C++ counterpart.
template <typename Constant, typename Enumerator>
constexpr bool sameNumber(Constant constant, Enumerator enumerator) {
  return static_cast<int>(constant) == static_cast<int>(enumerator);
}

}  // namespace quordalvane::c
