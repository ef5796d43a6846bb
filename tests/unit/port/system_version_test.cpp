#include "tests/unit/port/PortThreadFixture.h"

namespace quordalvane::test {
namespace {

struct Version {
  const char* text;
  bool pauses;
  const char* shown;
};

class SystemVersion : public PortThread, public testing::WithParamInterface<Version> {};

TEST_P(SystemVersion, DecidesWhetherACloseLastsATenthOfASecond) {
  world_.machine().setMainThread(false);
  world_.machine().setSystemVersion(GetParam().text);
  const Port port = create();
  const double before = now();
  const std::string all = during([&] { port->close(); });
  EXPECT_DOUBLE_EQ(now() - before, GetParam().pauses ? 0.1 : 0.0);
  const std::string record =
      std::string("Process close | UIDevice.currentDevice.systemVersion.floatValue >= 10.0, ") +
      GetParam().shown + "\nusleep 100000\n";
  EXPECT_EQ(all.find(record) != std::string::npos, GetParam().pauses) << all;
}

INSTANTIATE_TEST_SUITE_P(
    Text, SystemVersion,
    testing::Values(Version{"9.3.5", false, ""}, Version{"10", true, "10.000000"},
                    Version{"10.0.1", true, "10.000000"}, Version{"10.3.4", true, "10.300000"},
                    Version{"", false, ""}, Version{"nan", false, ""}, Version{"NaN", false, ""},
                    Version{"9.999", false, ""}, Version{"x10", false, ""},
                    Version{"6.1.0-rc1", false, ""}, Version{"12,5", true, "12.000000"},
                    Version{"100", true, "100.000000"}, Version{"-10", false, ""},
                    Version{" 10.0", true, "10.000000"}, Version{"\t\n9.9", false, ""},
                    Version{"+10", true, "10.000000"}, Version{"+-10", false, ""},
                    Version{"1e2", true, "100.000000"}, Version{"1e", false, ""},
                    Version{"100e-2", false, ""}, Version{".5e2", true, "50.000000"},
                    Version{"9999999999999999999999999999999999999999", true, "inf"},
                    Version{"1e99", true, "inf"}, Version{"1e-99", false, ""},
                    Version{"1.0e39", true, "inf"}, Version{"1.0e+39.5", true, "inf"},
                    Version{"0.1e40 beta", true, "inf"}, Version{"0.001e-44", false, ""},
                    Version{"1e99999999999999999999", true, "inf"},
                    Version{"1e-99999999999999999999", false, ""}, Version{"inf", false, ""},
                    Version{"infinity", false, ""}, Version{"0x10", false, ""},
                    Version{" ", false, ""}, Version{".", false, ""}));

}  // namespace
}  // namespace quordalvane::test
