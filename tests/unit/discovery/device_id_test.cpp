#include "discovery/DeviceId.h"

#include <gtest/gtest.h>

namespace quordalvane {
namespace {

TEST(DeviceId, ContainsMakerModelAndSerialNumberIfTheyAreKnown) {
  EXPECT_EQ(deviceIdOf("Maker", "T 20", "4711"), "MFG:Maker;MDL:T 20;SN:4711;CLS:PRINTER;");
  EXPECT_EQ(deviceIdOf("", "T;20:\n\"", ""), "MDL:T 20   ;CLS:PRINTER;");
}

}  // namespace
}  // namespace quordalvane
