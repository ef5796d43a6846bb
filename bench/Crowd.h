#pragma once

#include <memory>
#include <vector>

#include "bench/Endpoint.h"
#include "bench/Peer.h"
#include "iphone-IOPort/ExternalAccessoryPort.h"

namespace quordalvane::bench {

/// Many open line-mode ports over TCP, and one peer that answers all of them. Each port has a port
/// thread. A crowd must be created on the main thread, because otherwise the ports have no port
/// threads.
class Crowd {
 public:
  Crowd(int count, Core peerCore);
  ~Crowd();
  Crowd(const Crowd&) = delete;
  Crowd& operator=(const Crowd&) = delete;

  const std::vector<std::shared_ptr<ExternalAccessoryPort>>& ports() const { return ports_; }

 private:
  void openAll();

  const std::unique_ptr<Endpoint> endpoint_ = makeEndpoint(Medium::Tcp);
  Peer peer_;
  std::vector<std::shared_ptr<ExternalAccessoryPort>> ports_;
};

/// Raises this process's limit of open descriptors as far as the system allows.
void allowManyDescriptors();

}  // namespace quordalvane::bench
