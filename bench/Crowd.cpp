#include "bench/Crowd.h"

#include <sys/resource.h>

#include <stdexcept>
#include <thread>

#include "bench/OpenPort.h"

namespace quordalvane::bench {
namespace {

// How many ports are opened at the same time. Each `open` pauses for 0.1 s, so to open all ports
// one after another would take too long.
constexpr std::size_t openers = 50;

}  // namespace

Crowd::Crowd(int count, Core peerCore) : peer_(peerCore) {
  for (int i = 0; i < count; ++i) {
    ports_.push_back(makePort(endpoint_->device(), ZKEmulationQuorLine));
  }
  openAll();
  std::vector<int> descriptors;
  for (const auto& port : ports_) {
    if (!port->result71().value_or(false)) {
      throw std::runtime_error("a port of the crowd cannot be opened");
    }
    descriptors.push_back(endpoint_->accept());
  }
  peer_.answerEach(std::move(descriptors));
}

void Crowd::openAll() {
  std::vector<std::thread> threads;
  for (std::size_t first = 0; first < openers; ++first) {
    threads.emplace_back([this, first] {
      for (std::size_t i = first; i < ports_.size(); i += openers) {
        ports_[i]->open();
      }
    });
  }
  for (auto& thread : threads) {
    thread.join();
  }
}

Crowd::~Crowd() {
  for (const auto& port : ports_) {
    port->close();
  }
}

void allowManyDescriptors() {
  rlimit limit{};
  ::getrlimit(RLIMIT_NOFILE, &limit);
  limit.rlim_cur = limit.rlim_max;
  ::setrlimit(RLIMIT_NOFILE, &limit);
}

}  // namespace quordalvane::bench
