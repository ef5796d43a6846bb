#include "simulator/JobBytes.h"

#include <utility>

namespace quordalvane::simulator {

// The limit keeps the memory bounded if a printer receives bytes but prints none.
void JobBytes::receive(ByteView bytes) {
  held_.insert(held_.end(), bytes.begin(), bytes.end());
  while (held_.size() > mostKept) {
    passOne();
  }
}

void JobBytes::pass(std::uint64_t position) {
  while (passed_ < position && !held_.empty()) {
    passOne();
  }
}

void JobBytes::passOne() {
  if (job_.bytes.size() < mostKept) {
    job_.bytes.push_back(held_.front());
  }
  held_.pop_front();
  ++job_.count;
  ++passed_;
}

JobBytes::Job JobBytes::take() {
  return std::exchange(job_, {});
}

}  // namespace quordalvane::simulator
