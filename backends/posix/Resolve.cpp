#include "backends/posix/Resolve.h"

#include <arpa/inet.h>
#include <netdb.h>

#include <cstring>
#include <future>
#include <memory>
#include <thread>
#include <utility>

namespace quordalvane::posix {
namespace {

using Addresses = std::vector<SocketAddress>;

bool isInFigures(const std::string& host) {
  in6_addr address{};  // large enough for both kinds of addresses
  return ::inet_pton(AF_INET, host.c_str(), &address) == 1 ||
         ::inet_pton(AF_INET6, host.c_str(), &address) == 1;
}

class ResolverCategory : public std::error_category {
 public:
  const char* name() const noexcept override { return "resolver"; }
  std::string message(int code) const override { return ::gai_strerror(code); }
};

LookupResult askResolver(const std::string& host, std::uint16_t port) {
  addrinfo hints{};
  hints.ai_family = AF_UNSPEC;
  hints.ai_socktype = SOCK_STREAM;
  hints.ai_flags = AI_NUMERICSERV;
  addrinfo* found = nullptr;
  const std::string service = std::to_string(port);
  int error = ::getaddrinfo(host.c_str(), service.c_str(), &hints, &found);
  if (error != 0 && host == "localhost") {
    // "localhost" always means this machine, but the resolver does not know the name on a system
    // without a hosts file.
    error = ::getaddrinfo(nullptr, service.c_str(), &hints, &found);
  }
  if (error != 0) {
    return {.addresses = {}, .error = error};
  }
  const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> list(found, &::freeaddrinfo);
  LookupResult result;
  for (const addrinfo* entry = list.get(); entry != nullptr; entry = entry->ai_next) {
    SocketAddress address{.storage = {}, .length = entry->ai_addrlen};
    std::memcpy(&address.storage, entry->ai_addr, entry->ai_addrlen);
    result.addresses.push_back(address);
  }
  return result;
}

Addresses addressesOf(LookupResult result) {
  if (result.error != 0) {
    throw std::system_error(result.error, resolverCategory());
  }
  return std::move(result.addresses);
}

}  // namespace

const std::error_category& resolverCategory() {
  static const ResolverCategory category;
  return category;
}

Addresses lookUpUntil(SteadyTime deadline, Lookup lookup) {
  std::packaged_task<LookupResult()> task(std::move(lookup));
  auto result = task.get_future();
  std::thread(std::move(task)).detach();
  if (result.wait_until(deadline) != std::future_status::ready) {
    throw std::system_error(EAI_AGAIN, resolverCategory());
  }
  return addressesOf(result.get());
}

Addresses resolve(const std::string& host, std::uint16_t port, SteadyTime deadline) {
  const auto lookup = [=] { return askResolver(host, port); };
  return isInFigures(host) ? addressesOf(lookup()) : lookUpUntil(deadline, lookup);
}

}  // namespace quordalvane::posix
