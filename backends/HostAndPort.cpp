#include "backends/HostAndPort.h"

#include <algorithm>

#include "backends/SpecText.h"
#include "text/Number.h"
#include "text/Quoted.h"

namespace quordalvane {

HostAndPort parseHostAndPort(std::string_view text) {
  const std::size_t colon = text.rfind(':');
  const std::string_view written = text.substr(0, colon);
  const bool bracketed = written.size() > 2 && written.front() == '[' && written.back() == ']';
  const std::string_view host = bracketed ? written.substr(1, written.size() - 2) : written;
  const auto port = colon == std::string_view::npos
                        ? std::uint16_t{0}
                        : numberIn<std::uint16_t>(text.substr(colon + 1)).value_or(0);

  constexpr std::size_t longestHost = 253;
  const bool plain =
      std::all_of(host.begin(), host.end(), [](char c) { return c > ' ' && c <= '~'; });
  const bool ambiguous = !bracketed && host.find_first_of(":[]") != std::string_view::npos;
  if (host.empty() || host.size() > longestHost || !plain || ambiguous || port == 0) {
    spec::refuse("address " + inQuotes(text) +
                 ": takes HOST:PORT; PORT is from 1 to 65535, and an IPv6 address is in brackets");
  }
  return {.host = std::string(host), .port = port};
}

}  // namespace quordalvane
