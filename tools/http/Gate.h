#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quordalvane::http {

/// The place at which a server listens, in figures.
struct Endpoint {
  std::string host;  ///< like 127.0.0.1 or ::1, without brackets
  std::uint16_t port = 0;

  /// As an address shows it: HOST:PORT, an IPv6 host in brackets.
  std::string text() const;
};

/// The part of a request by which it is let in or turned away. A header that is missing is empty.
struct Visit {
  std::string_view method;
  std::string_view path;
  std::string_view host;
  std::string_view origin;
  std::string_view contentType;
};

/// The status and the reason with which a request is turned away.
struct Refusal {
  unsigned status;
  std::string why;
};

/// Lets in the requests of those who know the secret of the address, and of no other page.
///
/// A browser runs pages of anybody, and each may send requests to this machine. A page of another
/// origin is known by its header `Origin`; one whose name was pointed at this machine, by a `Host`
/// that is a name and no address; all the others do not know the token.
class Gate {
 public:
  /// `token` is the first folder of each address.
  Gate(Endpoint endpoint, std::string token);

  /// Why the request is turned away; empty if it is let in.
  std::optional<Refusal> refuses(const Visit& visit) const;

  /// The path of a request that was let in, below the token, without its first slash.
  std::string_view below(std::string_view path) const;

 private:
  bool isOurHost(std::string_view host) const;
  bool hasToken(std::string_view path) const;

  const Endpoint endpoint_;
  const std::string prefix_;  // a slash, the token, a slash
};

/// A token that nobody can guess: 32 letters and digits, 128 bits of chance. Throws
/// std::system_error if the system has none.
std::string randomToken();

}  // namespace quordalvane::http
