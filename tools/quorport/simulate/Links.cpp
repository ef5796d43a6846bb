#include "tools/quorport/simulate/Links.h"

#include <algorithm>
#include <tuple>

namespace quordalvane::tool {

using simulator::Fault;
using simulator::FaultKind;

simulator::PrinterLink& Links::begin(simulator::Instant now) {
  simulator::Faults all = faults_;
  all.list.insert(all.list.end(), forNextLink_.begin(), forNextLink_.end());
  forNextLink_.clear();
  link_ = std::make_unique<simulator::PrinterLink>(printer_, now, all);
  return *link_;
}

void Links::add(const simulator::Faults& faults, simulator::Instant now) {
  if (faults.seed) {
    setSeed(*faults.seed);
  }
  for (const Fault& fault : faults.list) {
    add(fault, now);
  }
}

void Links::add(const Fault& fault, simulator::Instant now) {
  if (fault.kind == FaultKind::At) {
    const auto isLater = [](simulator::Instant due, const Coming& other) {
      return due < other.due;
    };
    const simulator::Instant due = now + fault.time;
    coming_.insert(std::upper_bound(coming_.begin(), coming_.end(), due, isLater), {due, fault});
    return;
  }
  const bool onlyOnce = fault.kind == FaultKind::Cut;
  if (link_ != nullptr) {
    link_->addFault(fault, now);
  } else if (onlyOnce) {
    forNextLink_.push_back(fault);
  }
  if (!onlyOnce) {
    faults_.list.push_back(fault);
  }
}

std::vector<Fault> Links::faults() const {
  std::vector<Fault> all = faults_.list;
  all.insert(all.end(), forNextLink_.begin(), forNextLink_.end());
  for (const Coming& coming : coming_) {
    all.push_back(coming.fault);
  }
  return all;
}

void Links::work(simulator::Instant now) {
  while (!coming_.empty() && coming_.front().due <= now) {
    const Coming first = coming_.front();
    coming_.erase(coming_.begin());
    bring(first, now);
  }
}

void Links::bring(const Coming& coming, simulator::Instant now) {
  const auto& [key, value] = std::tie(coming.fault.key, coming.fault.value);
  if (simulator::isFault(key)) {
    add(simulator::parseFault(key, value), now);
  } else {
    printer_.set(key, value, now);
  }
}

std::optional<simulator::Instant> Links::nextEvent() const {
  return coming_.empty() ? std::nullopt : std::optional(coming_.front().due);
}

void Links::setSeed(std::uint64_t seed) {
  faults_.seed = seed;
  if (link_ != nullptr) {
    link_->setSeed(seed);
  }
}

void Links::clear(simulator::Instant now) {
  faults_.list.clear();
  forNextLink_.clear();
  coming_.clear();
  if (link_ != nullptr) {
    link_->clearFaults(now);
  }
}

}  // namespace quordalvane::tool
