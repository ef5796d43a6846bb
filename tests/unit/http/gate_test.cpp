#include "tools/http/Gate.h"

#include <gtest/gtest.h>

#include <set>

namespace quordalvane::http {
namespace {

const std::string token = "0123456789abcdef0123456789abcdef";

Gate gate() {
  return Gate({.host = "127.0.0.1", .port = 8080}, token);
}

Visit visit() {
  static const std::string path = "/" + token + "/api/printers";
  return {.method = "GET", .path = path, .host = "127.0.0.1:8080", .origin = "", .contentType = ""};
}

unsigned statusOf(const Visit& asked) {
  const auto refused = gate().refuses(asked);
  return refused ? refused->status : 200;
}

unsigned statusOfHost(std::string_view host) {
  Visit asked = visit();
  asked.host = host;
  return statusOf(asked);
}

unsigned statusOfOrigin(std::string_view origin) {
  Visit asked = visit();
  asked.origin = origin;
  return statusOf(asked);
}

TEST(RequestGate, AcceptsARequestWithTheToken) {
  EXPECT_EQ(statusOf(visit()), 200U);
  EXPECT_EQ(gate().below(visit().path), "api/printers");
}

TEST(RequestGate, RefusesEveryOtherToken) {
  for (const std::string& path :
       {std::string(), std::string("/"), "/" + token, token + "/", "//" + token + "/",
        "/" + token.substr(1) + "0/", "/" + token + "0/", "/" + std::string(32, '0') + "/"}) {
    Visit asked = visit();
    asked.path = path;
    EXPECT_EQ(statusOf(asked), 403U) << path;
  }
}

TEST(RequestGate, AcceptsOnlyThisMachinesNamesInTheHostHeader) {
  for (const char* host : {"127.0.0.1:8080", "localhost:8080", "[::1]:8080", "192.0.2.1:8080"}) {
    EXPECT_EQ(statusOfHost(host), 200U) << host;
  }
  for (const char* host : {"", ":", "[", "[]", "]", "[::1]", "[::1", "[::1]8080", "127.0.0.1",
                           "127.0.0.1:", "127.0.0.1:80", "127.0.0.1:8080x", "127.0.0.1:-8080",
                           "127.0.0.1:65536", "127.1:8080", "evil.example:8080",
                           "127.0.0.1.evil.example:8080", "localhost.:8080", "[evil]:8080"}) {
    EXPECT_EQ(statusOfHost(host), 403U) << host;
  }
}

TEST(RequestGate, AcceptsAHostHeaderWithoutAPortOnPort80) {
  const Gate usual({.host = "127.0.0.1", .port = 80}, token);
  Visit asked = visit();
  for (const char* host : {"127.0.0.1", "localhost:80", "[::1]"}) {
    asked.host = host;
    EXPECT_FALSE(usual.refuses(asked)) << host;
  }
}

TEST(RequestGate, RefusesEveryOtherOrigin) {
  EXPECT_EQ(statusOfOrigin("http://127.0.0.1:8080"), 200U);
  for (const char* origin : {"null", "http://127.0.0.1", "https://127.0.0.1:8080",
                             "http://localhost:8080", "http://127.0.0.1:8080.evil.example", " "}) {
    EXPECT_EQ(statusOfOrigin(origin), 403U) << origin;
  }
}

TEST(RequestGate, AcceptsControlRequestsOnlyAsPostedJson) {
  Visit asked = visit();
  asked.method = "POST";
  for (const char* type : {"application/json", "application/json; charset=utf-8"}) {
    asked.contentType = type;
    EXPECT_EQ(statusOf(asked), 200U) << type;
  }
  for (const char* type : {"", "text/plain", "application/jsonx", "application/"}) {
    asked.contentType = type;
    EXPECT_EQ(statusOf(asked), 415U) << type;
  }
  for (const char* method : {"PUT", "DELETE", "OPTIONS", "", "get"}) {
    asked.method = method;
    EXPECT_EQ(statusOf(asked), 405U) << method;
  }
}

TEST(Endpoint, WritesAnIpv6AddressInBrackets) {
  EXPECT_EQ((Endpoint{.host = "::1", .port = 80}).text(), "[::1]:80");
  EXPECT_EQ((Endpoint{.host = "127.0.0.1", .port = 8080}).text(), "127.0.0.1:8080");
}

TEST(RandomToken, IsDifferentEachTime) {
  std::set<std::string> tokens;
  for (int i = 0; i < 100; ++i) {
    tokens.insert(randomToken());
    EXPECT_EQ(tokens.rbegin()->size(), token.size());
  }
  EXPECT_EQ(tokens.size(), 100U);
}

}  // namespace
}  // namespace quordalvane::http
