#pragma once

#include <sched.h>

namespace quordalvane::bench {

/// Two of the cores on which this process may run. If there is only one core, `First` and `Second`
/// mean the same core.
enum class Core { First, Second };

/// Binds the calling thread, and the threads that it starts, to a core.
void bindTo(Core core);

/// Binds the calling thread to a core during the lifetime of this object.
class Bound {
 public:
  explicit Bound(Core core);
  ~Bound();
  Bound(const Bound&) = delete;
  Bound& operator=(const Bound&) = delete;

 private:
  cpu_set_t before_;
};

}  // namespace quordalvane::bench
