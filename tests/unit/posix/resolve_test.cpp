#include "backends/posix/Resolve.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netdb.h>
#include <netinet/in.h>

#include <future>
#include <stdexcept>
#include <string>
#include <system_error>

#include "tests/unit/posix/Stopwatch.h"
#include "tests/unit/posix/SystemCalls.h"

namespace quordalvane::posix {
namespace {

using namespace std::chrono_literals;

sockaddr_in asIPv4(const SocketAddress& address) {
  EXPECT_EQ(address.length, sizeof(sockaddr_in));
  return reinterpret_cast<const sockaddr_in&>(address.storage);
}

TEST(Resolve, AcceptsNumericIpv4Addresses) {
  const auto addresses = resolve("127.0.0.9", 9100, SteadyClock::now() + 5s);
  ASSERT_EQ(addresses.size(), 1U);
  EXPECT_EQ(asIPv4(addresses[0]).sin_addr.s_addr, inet_addr("127.0.0.9"));
  EXPECT_EQ(asIPv4(addresses[0]).sin_port, htons(9100));
}

TEST(Resolve, AcceptsIpv6Addresses) {
  const auto addresses = resolve("::1", 9100, SteadyClock::now() + 5s);
  ASSERT_EQ(addresses.size(), 1U);
  EXPECT_EQ(addresses[0].storage.ss_family, AF_INET6);
}

TEST(Resolve, ResolvesLocalhostEvenIfTheResolverDoesNotKnowTheName) {
  const UnknownHost unknown("localhost");
  EXPECT_FALSE(resolve("localhost", 9100, SteadyClock::now() + 5s).empty());
}

TEST(Resolve, ThrowsAResolverErrorForAnImpossibleName) {
  // No part of a host name may be this long, so the resolver asks no server.
  try {
    resolve(std::string(200, 'a'), 9100, SteadyClock::now() + 5s);
    FAIL();
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.code().category(), resolverCategory());
  }
}

TEST(Resolve, AbandonsALookupAtTheDeadline) {
  std::promise<void> release;
  std::promise<void> left;
  const Stopwatch watch;
  EXPECT_THROW(lookUpUntil(SteadyClock::now() + 20ms,
                           [until = release.get_future().share(), &left]() {
                             until.wait();
                             left.set_value();
                             return LookupResult();
                           }),
               std::runtime_error);
  EXPECT_GE(watch.seconds(), 0.02);
  EXPECT_LT(watch.seconds(), 2);
  release.set_value();
  left.get_future().wait();
}

TEST(Resolve, ReturnsTheAddressesOrThrowsTheErrorOfALookup) {
  const SteadyTime deadline = SteadyClock::now() + 5s;
  EXPECT_EQ(
      lookUpUntil(deadline, [] { return LookupResult{std::vector<SocketAddress>(3)}; }).size(), 3U);
  try {
    lookUpUntil(deadline, [] { return LookupResult{{}, EAI_NONAME}; });
    FAIL();
  } catch (const std::system_error& error) {
    EXPECT_EQ(error.code(), std::error_code(EAI_NONAME, resolverCategory()));
  }
}

}  // namespace
}  // namespace quordalvane::posix
