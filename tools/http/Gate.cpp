#include "tools/http/Gate.h"

#include <arpa/inet.h>
#include <sys/random.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <system_error>
#include <utility>

#include "text/Hex.h"
#include "text/Number.h"

namespace quordalvane::http {
namespace {

constexpr std::uint16_t usualPort = 80;

// The comparison takes the same time, however many characters are equal, so that nobody can guess
// the token piece by piece.
bool isSame(std::string_view one, std::string_view other) {
  if (one.size() != other.size()) {
    return false;
  }
  unsigned difference = 0;
  for (std::size_t i = 0; i < one.size(); ++i) {
    difference |= static_cast<unsigned>(one[i] ^ other[i]) & 0xffU;
  }
  return difference == 0;
}

bool isAddressOf(int family, std::string_view text) {
  std::array<unsigned char, sizeof(in6_addr)> address{};
  return ::inet_pton(family, std::string(text).c_str(), address.data()) == 1;
}

struct HostHeader {
  std::string_view name;  //  an IPv6 address has no brackets here
  bool isAddress = false;
  std::uint16_t port = usualPort;
};

std::optional<HostHeader> parsed(std::string_view text) {
  HostHeader host;
  std::string_view rest;
  if (text.starts_with('[')) {
    const std::size_t end = std::min(text.find(']'), text.size() - 1);
    host.name = text.substr(1, end - 1);
    host.isAddress = isAddressOf(AF_INET6, host.name);
    rest = text.substr(end + 1);
  } else {
    const std::size_t end = std::min(text.find(':'), text.size());
    host.name = text.substr(0, end);
    host.isAddress = isAddressOf(AF_INET, host.name);
    rest = text.substr(end);
  }
  if (rest.empty()) {
    return host;
  }
  const auto port = numberIn<decltype(host.port)>(rest.substr(1));
  host.port = port.value_or(0);
  return rest.front() == ':' && port ? std::optional(host) : std::nullopt;
}

bool isJson(std::string_view contentType) {
  constexpr std::string_view json = "application/json";
  return contentType == json || contentType.starts_with(std::string(json) + ";");
}

}  // namespace

std::string Endpoint::text() const {
  const bool hasColons = host.find(':') != std::string::npos;
  return (hasColons ? "[" + host + "]:" : host + ":") + std::to_string(port);
}

Gate::Gate(Endpoint endpoint, std::string token)
    : endpoint_(std::move(endpoint)), prefix_("/" + std::move(token) + "/") {}

std::optional<Refusal> Gate::refuses(const Visit& visit) const {
  if (!isOurHost(visit.host)) {
    return Refusal{403, "open this server by its IP address, not by a name"};
  }
  if (!visit.origin.empty() && visit.origin != "http://" + std::string(visit.host)) {
    return Refusal{403, "this server answers only requests of its own page"};
  }
  if (!hasToken(visit.path)) {
    return Refusal{
        403,
        "the address lacks the token; use the whole address that was written to standard output"};
  }
  if (visit.method != "GET" && visit.method != "HEAD" && visit.method != "POST") {
    return Refusal{405, "this server accepts only GET, HEAD and POST"};
  }
  if (visit.method == "POST" && !isJson(visit.contentType)) {
    return Refusal{415, "a control line must be sent as application/json"};
  }
  return std::nullopt;
}

// A request may name any IP address as its host, because a server that listens on all interfaces
// cannot list its own addresses. This is safe: an attacker can redirect a host name to this
// machine, but not an IP address.
bool Gate::isOurHost(std::string_view text) const {
  const auto host = parsed(text);
  if (!host || host->port != endpoint_.port) {
    return false;
  }
  return host->isAddress || host->name == "localhost";
}

bool Gate::hasToken(std::string_view path) const {
  return isSame(path.substr(0, prefix_.size()), prefix_);
}

std::string_view Gate::below(std::string_view path) const {
  return path.substr(prefix_.size());
}

std::string randomToken() {
  std::array<unsigned char, 16> chance{};
  if (::getrandom(chance.data(), chance.size(), 0) != static_cast<ssize_t>(chance.size())) {
    throw std::system_error(errno, std::generic_category());
  }
  return hexText(chance);
}

}  // namespace quordalvane::http
