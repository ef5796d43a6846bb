#pragma once

#include <memory>

#include "platform/Forwarding.h"
#include "tests/support/Fault.h"

namespace quordalvane::test {

/// Which calls a fault affects: only the k-th of the calls that it can affect, or also all later
/// ones.
class FaultPlan {
 public:
  /// `k` counts from 1. The plan takes effect with `arm`.
  FaultPlan(std::shared_ptr<Fault> fault, std::uint64_t k, bool fromThereOn)
      : fault_(std::move(fault)), k_(k), fromThereOn_(fromThereOn) {}

  void arm() { armed_ = true; }
  void disarm() { armed_ = false; }

  /// Whether the k-th call was ever made.
  bool hasStruck() const { return calls_ >= k_; }

  /// Counts the call. Returns the fault if it affects this call, and null otherwise. Throws any
  /// exception of `Fault::before`.
  Fault* strike(PlatformCall call);

  /// By how many seconds the wall clock has jumped so far.
  std::int64_t clockStep() const { return clockStep_; }

 private:
  const std::shared_ptr<Fault> fault_;
  const std::uint64_t k_;
  const bool fromThereOn_;
  bool armed_ = false;
  std::uint64_t calls_ = 0;
  std::int64_t clockStep_ = 0;
};

/// A platform whose calls fail as planned: one call, or this call and all later calls.
class FaultyPlatform : public ForwardingPlatform {
 public:
  FaultyPlatform(std::shared_ptr<Platform> next, std::shared_ptr<FaultPlan> plan);
  ~FaultyPlatform() override;

  EAAccessoryManager& sharedAccessoryManager() override;
  UIDevice& currentDevice() override;
  Clock& clock() override;
  NSRunLoop& currentRunLoop() override;
  std::shared_ptr<NSThread> makeThread(std::function<void()> body) override;
  bool isMainThread() override;
  void ignoreSigPipe() override;

 private:
  class Parts;
  const std::unique_ptr<Parts> parts_;
};

}  // namespace quordalvane::test
