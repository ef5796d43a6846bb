#pragma once

#include <memory>
#include <string>
#include <utility>

#include "platform/Forwarding.h"

namespace quordalvane::test {

/// A platform with its own way to read an address from every accessory.
class ReadsAddresses : public ForwardingPlatform {
 public:
  ReadsAddresses(std::shared_ptr<Platform> next, std::string address)
      : ForwardingPlatform(std::move(next)),
        manager_(ForwardingPlatform::sharedAccessoryManager(), std::move(address)) {}
  EAAccessoryManager& sharedAccessoryManager() override { return manager_; }

 private:
  class Manager : public ForwardingAccessoryManager {
   public:
    Manager(EAAccessoryManager& next, std::string address)
        : ForwardingAccessoryManager(next), address_(std::move(address)) {}
    bool readsAddresses() override { return true; }
    std::string addressOf(EAAccessory&) override { return address_; }

   private:
    const std::string address_;
  };

  Manager manager_;
};

}  // namespace quordalvane::test
