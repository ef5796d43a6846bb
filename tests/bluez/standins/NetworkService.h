#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "backends/bluez/BusLibrary.h"

namespace quordalvane::test {

/// A network service that the stand-in announces.
struct StandInAnnouncement {
  std::string name = "Bar";
  std::string address = "192.0.2.10";  ///< "": the name is never resolved
  std::uint16_t port = 9100;
  std::vector<std::string> texts = {};
  std::string type = "_pdl-datastream._tcp";
  std::uint32_t flags = 0;  ///< the flags in the resolver's answer; 1: the answer is cached
};

/// A stand-in on the system's bus for the network's discovery service. It has only the functions
/// that a search needs. It announces everything before it answers a program that browses. A
/// separate thread serves it until it is destroyed.
class StandInAvahi {
 public:
  explicit StandInAvahi(std::vector<StandInAnnouncement> announcements);
  ~StandInAvahi();
  StandInAvahi(const StandInAvahi&) = delete;
  StandInAvahi& operator=(const StandInAvahi&) = delete;

  /// The service types that programs have asked for.
  std::vector<std::string> askedFor() const { return askedFor_; }

 private:
  using Texts = std::vector<std::vector<std::uint8_t>>;
  using Resolved =
      sdbus::Result<std::int32_t, std::int32_t, std::string, std::string, std::string, std::string,
                    std::int32_t, std::string, std::uint16_t, Texts, std::uint32_t>;

  void announceAll();
  void resolve(Resolved&& result, const std::string& name);

  const std::vector<StandInAnnouncement> announcements_;
  const std::unique_ptr<sdbus::IConnection> connection_;
  std::unique_ptr<sdbus::IObject> server_;
  std::unique_ptr<sdbus::IObject> browser_;
  std::vector<std::shared_ptr<Resolved>> unanswered_;
  std::vector<std::string> askedFor_;
  std::thread thread_;
};

}  // namespace quordalvane::test
