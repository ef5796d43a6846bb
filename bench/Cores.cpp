#include "bench/Cores.h"

#include <cstddef>
#include <vector>

namespace quordalvane::bench {
namespace {

std::vector<std::size_t> allowedCores() {
  cpu_set_t allowed;
  ::sched_getaffinity(0, sizeof allowed, &allowed);
  std::vector<std::size_t> cores;
  for (std::size_t core = 0; core < CPU_SETSIZE; ++core) {
    if (CPU_ISSET(core, &allowed)) {
      cores.push_back(core);
    }
  }
  return cores;
}

}  // namespace

void bindTo(Core core) {
  // The list is read once, before the first binding changes it.
  static const std::vector<std::size_t> cores = allowedCores();
  cpu_set_t chosen;
  CPU_ZERO(&chosen);
  CPU_SET(core == Core::First ? cores.front() : cores.back(), &chosen);
  ::sched_setaffinity(0, sizeof chosen, &chosen);
}

Bound::Bound(Core core) {
  ::sched_getaffinity(0, sizeof before_, &before_);
  bindTo(core);
}

Bound::~Bound() {
  ::sched_setaffinity(0, sizeof before_, &before_);
}

}  // namespace quordalvane::bench
