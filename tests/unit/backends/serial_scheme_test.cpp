#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "backends/Schemes.h"
#include "tests/unit/backends/SpecFailure.h"

namespace quordalvane {
namespace {

using namespace std::string_literals;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;

TEST(DeviceSpec, ASerialLineAcceptsAnySpeedFrom50To4000000Baud) {
  EXPECT_TRUE(parseDeviceSpec("serial:/dev/x").options.empty());
  for (const char* right : {"50", "9601", "115200", "4000000"}) {
    EXPECT_THAT(parseDeviceSpec("serial:/dev/x,baud="s + right).options,
                ElementsAre(Pair("baud", right)));
  }
  for (const char* wrong : {"", "49", "4000001", "-9600", "fast", "99999999999999999999"}) {
    EXPECT_THAT(failure("serial:/dev/x,baud="s + wrong),
                AllOf(HasSubstr("baud="), HasSubstr("9600"), HasSubstr("115200")))
        << wrong;
  }
}

TEST(DeviceSpec, ASerialLineAcceptsValidFramingAndFlowControl) {
  EXPECT_THAT(parseDeviceSpec("serial:/dev/x,bits=7,parity=even,stop=2,flow=rtscts").options,
              ElementsAre(Pair("bits", "7"), Pair("parity", "even"), Pair("stop", "2"),
                          Pair("flow", "rtscts")));
  EXPECT_THAT(parseDeviceSpec("serial:/dev/x,stop=1").options, ElementsAre(Pair("stop", "1")));
  EXPECT_THAT(failure("serial:/dev/x,bits=9"), HasSubstr("bits=\"9\": takes the data bits"));
  EXPECT_THAT(failure("serial:/dev/x,parity=yes"),
              HasSubstr(R"("none", "even", "odd", "mark" or "space")"));
  EXPECT_THAT(failure("serial:/dev/x,parity="),
              HasSubstr(R"("none", "even", "odd", "mark" or "space")"));
  EXPECT_THAT(failure("serial:/dev/x,flow="), HasSubstr(R"("none", "rtscts" or "xonxoff")"));
  EXPECT_THAT(failure("serial:/dev/x,stop=0"), HasSubstr("the stop bits, 1 or 2"));
  EXPECT_THAT(failure("serial:/dev/x,flow=hardware"),
              HasSubstr(R"("none", "rtscts" or "xonxoff")"));
  EXPECT_THAT(failure("tcp:h:1,flow=none"), HasSubstr("\"flow\""));
}

TEST(SerialSettingsToTry, HaveKeysThatADeviceSpecAccepts) {
  const DeviceSpec given = parseDeviceSpec("serial:/dev/x,baud=38400,flow=rtscts,name=Till");
  const auto variants = findScheme("serial")->variants(given);
  EXPECT_EQ(variants.front().keys, "");
  EXPECT_EQ(variants.front().words, "at 38400 baud, flow control rtscts");
  std::set<std::string> seen;
  for (const SchemeVariant& variant : variants) {
    EXPECT_TRUE(seen.insert(variant.keys).second) << variant.keys;
    EXPECT_EQ(variant.spec.identity.name, "Till");
    if (!variant.keys.empty()) {
      EXPECT_NO_THROW(parseDeviceSpec("serial:/dev/x," + variant.keys)) << variant.keys;
    }
  }
  EXPECT_THAT(
      seen, testing::IsSupersetOf({"baud=9600", "parity=even", "bits=7,parity=odd", "flow=none"}));
}

std::vector<std::string> waysToSet(const std::string& line) {
  std::vector<std::string> ways;
  for (const SchemeVariant& variant : findScheme("serial")->variants(parseDeviceSpec(line))) {
    ways.push_back(std::string(variant.cause) + " " + variant.keys + " " + variant.words);
  }
  return ways;
}

TEST(SerialSettingsToTry, VaryTheSpeedThenTheFramingAndFinallyOmitFlowControl) {
  EXPECT_THAT(waysToSet("serial:/dev/x,baud=4800,flow=xonxoff"),
              ElementsAre("  at 4800 baud, flow control xonxoff",
                          "wrong-speed baud=1200 at 1200 baud, flow control xonxoff",
                          "wrong-speed baud=2400 at 2400 baud, flow control xonxoff",
                          "wrong-speed baud=9600 at 9600 baud, flow control xonxoff",
                          "wrong-speed baud=19200 at 19200 baud, flow control xonxoff",
                          "wrong-speed baud=38400 at 38400 baud, flow control xonxoff",
                          "wrong-speed baud=57600 at 57600 baud, flow control xonxoff",
                          "wrong-speed baud=115200 at 115200 baud, flow control xonxoff",
                          "wrong-speed baud=230400 at 230400 baud, flow control xonxoff",
                          "wrong-speed baud=460800 at 460800 baud, flow control xonxoff",
                          "wrong-speed baud=921600 at 921600 baud, flow control xonxoff",
                          "wrong-parity parity=even at 4800 baud with 8 data bits, parity even and "
                          "1 stop bit, flow control xonxoff",
                          "wrong-parity parity=odd at 4800 baud with 8 data bits, parity odd and "
                          "1 stop bit, flow control xonxoff",
                          "wrong-parity bits=7,parity=even at 4800 baud with 7 data bits, parity "
                          "even and 1 stop bit, flow control xonxoff",
                          "wrong-parity bits=7,parity=odd at 4800 baud with 7 data bits, parity "
                          "odd and 1 stop bit, flow control xonxoff",
                          "wrong-flow flow=none at 4800 baud"));
}

TEST(SerialSettingsToTry, IncludeTheDefaultSettings) {
  const auto ways = waysToSet("serial:/dev/x,stop=2");
  EXPECT_EQ(ways.front(), "  at 9600 baud with 8 data bits, parity none and 2 stop bits");
  EXPECT_THAT(ways, testing::Contains("wrong-parity stop=1 at 9600 baud"));
  EXPECT_EQ(ways.size(), 16U) << "no flow control is to be given up";
}

}  // namespace
}  // namespace quordalvane
