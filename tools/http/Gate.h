#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quordalvane::http {

/// The address and port at which a server listens.
struct Endpoint {
  std::string host;  ///< an IP address like 127.0.0.1 or ::1, without brackets
  std::uint16_t port = 0;

  /// Returns HOST:PORT as in a URL: an IPv6 address is in brackets.
  std::string text() const;
};

/// The parts of a request that decide whether the request is accepted. A missing header is empty.
struct Visit {
  std::string_view method;
  std::string_view path;
  std::string_view host;
  std::string_view origin;
  std::string_view contentType;
};

/// The HTTP status and the reason of a refused request.
struct Refusal {
  unsigned status;
  std::string why;
};

/// Accepts only requests that contain the secret token, and only from this server's own pages.
///
/// A browser runs anybody's pages, and each page may send requests to this machine. The gate
/// refuses the requests of three kinds of pages:
///
/// - A page of another origin: the header `Origin` shows it.
/// - A page whose host name was redirected to this machine: the header `Host` is a name, not an IP
///   address.
/// - Any other page that does not know the token.
class Gate {
 public:
  /// `token` is the first folder of each path.
  Gate(Endpoint endpoint, std::string token);

  /// Returns the reason why the request is refused; empty if it is accepted.
  std::optional<Refusal> refuses(const Visit& visit) const;

  /// Returns the path of an accepted request, without the token and the slashes around the token.
  std::string_view below(std::string_view path) const;

 private:
  bool isOurHost(std::string_view host) const;
  bool hasToken(std::string_view path) const;

  const Endpoint endpoint_;
  const std::string prefix_;  // a slash, the token, a slash
};

/// Returns a token that nobody can guess: 32 hex digits, 128 random bits. Throws std::system_error
/// if the system gives no random numbers.
std::string randomToken();

}  // namespace quordalvane::http
