#include "simulator/Asides.h"

namespace quordalvane::simulator {

void Asides::add(std::uint64_t before, std::size_t count) {
  if (count == 0) {
    return;
  }
  if (ahead_.empty() || ahead_.back().before != before) {
    ahead_.push_back({before, 0});
  }
  ahead_.back().bytes += count;
}

void Asides::pass(std::uint64_t position) {
  while (!ahead_.empty() && ahead_.front().before <= position) {
    passed_ += ahead_.front().bytes;
    ahead_.pop_front();
  }
}

}  // namespace quordalvane::simulator
