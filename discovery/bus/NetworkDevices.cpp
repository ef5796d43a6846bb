#include "discovery/NetworkDevices.h"

#include <arpa/inet.h>
#include <net/if.h>

#include <cstdint>
#include <map>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "backends/SpecText.h"
#include "backends/bluez/Bus.h"

namespace quordalvane {
namespace {

using bluez::Bus;
using bluez::SteadyTime;
using Texts = std::vector<std::vector<std::uint8_t>>;

constexpr auto serviceName = "org.freedesktop.Avahi";
constexpr auto serverInterface = "org.freedesktop.Avahi.Server";

// Only printers with a raw port are found, because every other protocol needs a page language that
// receipt printers do not speak.
constexpr auto rawPort = "_pdl-datastream._tcp";

constexpr std::int32_t any = -1;  // means any interface or any protocol
constexpr std::uint32_t noFlags = 0;
constexpr std::uint32_t fromCache = 1;  // a flag: the announcement is an old one, from a cache

// No shop has so many printers. The limit protects against a flood of announcements.
constexpr std::size_t mostAnnouncements = 100;

struct Announcement {
  std::int32_t interface;
  std::int32_t protocol;
  std::string name;
  std::string type;
  std::string domain;
};

// Returns the value of `key` from the "key=value" texts that a printer announces; "" if the key is
// missing.
std::string valueOf(const Texts& texts, std::string_view key) {
  for (const auto& bytes : texts) {
    const std::string text(bytes.begin(), bytes.end());
    if (text.size() > key.size() && text.starts_with(key) && text[key.size()] == '=') {
      return text.substr(key.size() + 1);
    }
  }
  return "";
}

bool isAddress(int family, const std::string& text) {
  in6_addr address{};  // large enough for both kinds of addresses
  return ::inet_pton(family, text.c_str(), &address) == 1;
}

// Returns the part after `tcp:` of a device text: the address and the port; "" if the address is
// invalid. A link-local address also needs the name of its interface.
std::string placeOf(const std::string& address, std::uint16_t port, std::int32_t interface) {
  const std::string end = ":" + std::to_string(port);
  if (isAddress(AF_INET, address)) {
    return address + end;
  }
  if (!isAddress(AF_INET6, address)) {
    return "";
  }
  char name[IF_NAMESIZE] = "";
  const bool isOfLink = address.starts_with("fe80") &&
                        ::if_indextoname(static_cast<unsigned>(interface), name) != nullptr;
  return "[" + address + (isOfLink ? "%" + std::string(name) : "") + "]" + end;
}

/// Receives announcements of printers and asks for the address of each printer.
class Search {
 public:
  Search(Bus& bus, SteadyTime deadline)
      : bus_(bus),
        server_(sdbus::createProxy(bus.connection(), bluez::ServiceName(serviceName),
                                   sdbus::ObjectPath("/"))),
        // The match rule for announcements is added first, because they may arrive before the
        // answer to ServiceBrowserNew.
        match_(bluez::addMatch(bus.connection(),
                               "type='signal',sender='org.freedesktop.Avahi',"
                               "interface='org.freedesktop.Avahi.ServiceBrowser',member='ItemNew'",
                               [this](sdbus::Message& message) { hear(message); })) {
    bus_.call(deadline, {serviceName, "/", serverInterface, "ServiceBrowserNew"}, any, any,
              std::string(rawPort), std::string(), noFlags);
  }

  std::vector<FoundDevice> listenUntil(SteadyTime deadline) {
    bus_.handleUntil(deadline, [] { return false; });
    std::vector<FoundDevice> devices;
    for (auto& [name, device] : found_) {
      devices.push_back(std::move(device));
    }
    return devices;
  }

 private:
  void hear(sdbus::Message& message) {
    Announcement heard;
    message >> heard.interface >> heard.protocol >> heard.name >> heard.type >> heard.domain;
    if (heard.type == rawPort && ++heardCount_ <= mostAnnouncements) {
      ask(heard);
    }
  }

  void ask(const Announcement& heard) {
    server_->callMethodAsync("ResolveService")
        .onInterface(serverInterface)
        .withArguments(heard.interface, heard.protocol, heard.name, heard.type, heard.domain, any,
                       noFlags)
        .uponReplyInvoke([this](bluez::ReplyError error, std::int32_t interface,
                                std::int32_t /*protocol*/, const std::string& name,
                                const std::string& /*type*/, const std::string& /*domain*/,
                                const std::string& /*host*/, std::int32_t /*family*/,
                                const std::string& address, std::uint16_t port, const Texts& texts,
                                std::uint32_t flags) {
          if (!error) {
            note(name, placeOf(address, port, interface), texts, (flags & fromCache) == 0);
          }
        });
  }

  // Adds a printer to the result. A printer is announced once for each interface and kind of
  // address; only its shortest address is kept.
  void note(const std::string& name, const std::string& place, const Texts& texts, bool isHeard) {
    if (place.empty() || place.ends_with(":0")) {
      return;
    }
    const auto known = found_.find(name);
    if (known != found_.end() &&
        (place.starts_with('[') || known->second.device <= "tcp:" + place)) {
      return;
    }
    const std::string type = valueOf(texts, "ty");
    found_[name] = {.device = spec::deviceText("tcp", place),
                    .name = shownText(type.empty() ? name : type),
                    .serialNumber = "",
                    .maker = shownText(valueOf(texts, "usb_MFG")),
                    .model = shownText(valueOf(texts, "usb_MDL")),
                    .via = Via::Network,
                    .reachable = isHeard ? std::optional(true) : std::nullopt};
  }

  Bus& bus_;
  std::map<std::string, FoundDevice> found_;
  std::size_t heardCount_ = 0;
  const std::unique_ptr<sdbus::IProxy> server_;
  const sdbus::Slot match_;
};

}  // namespace

std::vector<FoundDevice> networkDevices(std::chrono::milliseconds limit) {
  const SteadyTime deadline = bluez::SteadyClock::now() + limit;
  Bus bus(deadline);
  try {
    return Search(bus, deadline).listenUntil(deadline);
  } catch (const sdbus::Error& error) {
    throw std::runtime_error("the discovery service avahi-daemon cannot be asked: " +
                             error.getMessage());
  }
}

}  // namespace quordalvane
