#pragma once

#include <map>
#include <memory>
#include <mutex>

#include "platform/Forwarding.h"
#include "tests/support/Trace.h"

namespace quordalvane::test {

/// Notes the calls that pass through it, with their arguments and results.
class TracingPlatform : public ForwardingPlatform {
 public:
  /// `trace` must outlive this and all threads made by it.
  TracingPlatform(std::shared_ptr<Platform> next, Trace& trace);
  ~TracingPlatform() override;

  EAAccessoryManager& sharedAccessoryManager() override;
  UIDevice& currentDevice() override;
  Clock& clock() override;
  NSRunLoop& currentRunLoop() override;
  std::shared_ptr<NSThread> makeThread(std::function<void()> body) override;
  void ignoreSigPipe() override;

 private:
  class Manager;
  class Device;
  class TracedClock;
  class RunLoop;

  Trace& trace_;
  const std::unique_ptr<Manager> manager_;
  const std::unique_ptr<Device> device_;
  const std::unique_ptr<TracedClock> clock_;
  std::mutex mutex_;  // guards runLoops_
  std::map<NSRunLoop*, std::unique_ptr<RunLoop>> runLoops_;
};

}  // namespace quordalvane::test
