#include "tools/quorport/simulate/Links.h"

namespace quordalvane::tool {
namespace {

using simulator::Fault;
using simulator::FaultKind;

bool namesAMoment(const Fault& fault) {
  return fault.kind == FaultKind::cut || fault.kind == FaultKind::at;
}

}  // namespace

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
    if (link_ != nullptr) {
      link_->addFault(fault, now);
    } else if (namesAMoment(fault)) {
      forNextLink_.push_back(fault);
    }
    if (!namesAMoment(fault)) {
      faults_.list.push_back(fault);
    }
  }
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
  if (link_ != nullptr) {
    link_->clearFaults(now);
  }
}

}  // namespace quordalvane::tool
