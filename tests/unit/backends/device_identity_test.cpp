#include "backends/DeviceIdentity.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/support/TemporaryFolder.h"

namespace quordalvane {
namespace {

std::string identityOf(const std::string& text) {
  return deviceIdentity(parseDeviceSpec(text));
}

TEST(DeviceIdentity, IsTheTextBeforeTheFirstComma) {
  EXPECT_EQ(identityOf("tcp:192.0.2.10:9100,name=Kitchen"), "tcp:192.0.2.10:9100");
  EXPECT_NE(identityOf("tcp:192.0.2.10:9100"), identityOf("tcp:192.0.2.10:9101"));
}

TEST(DeviceIdentity, IgnoresTheLetterCaseOfAHost) {
  EXPECT_EQ(identityOf("tcp:Till-1.Shop:9100"), identityOf("tcp:till-1.shop:9100"));
  EXPECT_EQ(identityOf("tcp:A-Z:9100"), identityOf("tcp:a-z:9100"));
}

TEST(DeviceIdentity, FollowsSymbolicLinksOfAPath) {
  const test::TemporaryFolder folder;
  std::ofstream(folder.file("ttyUSB0")) << "";
  std::filesystem::create_symlink(folder.file("ttyUSB0"), folder.file("printer"));
  const std::string direct = "serial:" + folder.file("ttyUSB0");
  EXPECT_EQ(identityOf(direct), identityOf("serial:" + folder.file("printer") + ",baud=9600"));
  EXPECT_EQ(identityOf(direct), identityOf("serial:" + folder.file("./x/../ttyUSB0")));
  EXPECT_NE(identityOf(direct), identityOf("unix:" + folder.file("ttyUSB0")));
}

TEST(DeviceIdentity, KeepsThePathIfItsLinksFormALoop) {
  const test::TemporaryFolder folder;
  const std::string loop = folder.file("loop");
  std::filesystem::create_symlink(loop, loop);
  EXPECT_EQ(identityOf("serial:" + loop), "serial:" + loop);
}

TEST(DeviceIdentity, IsEmptyForAnUnknownScheme) {
  DeviceSpec spec = parseDeviceSpec("unix:p");
  spec.scheme = "pigeon";
  EXPECT_EQ(deviceIdentity(spec), "");
}

TEST(DeviceIdentity, IsEmptyForTheBuiltInVirtualPrinter) {
  EXPECT_EQ(identityOf("virtual:"), "");
}

}  // namespace
}  // namespace quordalvane
