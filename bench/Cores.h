#pragma once

#include <sched.h>

namespace quordalvane::bench {

/// Two of the cores that this process may run on; the same one twice if there is no other.
enum class Core { First, Second };

/// Binds the calling thread to a core, and with it the threads that it starts.
void bindTo(Core core);

/// Binds the calling thread to a core for as long as it lives.
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
