#include <sstream>
#include <string>

#include "fuzz/FuzzTarget.h"
#include "tools/http/Gate.h"

using namespace quordalvane;
using fuzz::require;

/// The input is the lines of a request: method, path, host, origin, content type. The path of an
/// accepted request must begin with the token. Its host must be `localhost` or an IP address, and
/// its origin must be empty or equal to the host.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const http::Gate gate({.host = "127.0.0.1", .port = 8080}, "secret");
  std::istringstream lines(std::string(data, data + size));
  std::string method, path, host, origin, type;
  std::getline(lines, method);
  std::getline(lines, path);
  std::getline(lines, host);
  std::getline(lines, origin);
  std::getline(lines, type);
  const auto refused = gate.refuses(
      {.method = method, .path = path, .host = host, .origin = origin, .contentType = type});
  if (refused) {
    require(refused->status >= 400 && refused->status < 500 && !refused->why.empty());
    return 0;
  }
  require(path.starts_with("/secret/"));
  require(gate.below(path) == path.substr(8));
  require(host.ends_with(":8080"));
  require(host.starts_with("localhost:") ||
          host.find_first_of("ghijklmnopqrstuvwxyz") == host.npos);
  require(origin.empty() || origin == "http://" + host);
  require(method == "GET" || method == "HEAD" || type.starts_with("application/json"));
  return 0;
}
