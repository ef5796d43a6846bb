#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/lp.h>

#include <string>
#include <utility>

#include "backends/posix/Descriptor.h"
#include "tests/unit/posix/SystemCalls.h"

namespace quordalvane::posix {
namespace {

constexpr int ready = LP_PSELECD | LP_PERRORP;

/// The state of a printer whose driver reports `status`.
std::string stateOf(Descriptor::Kind kind, int status) {
  const Descriptor printer(::open("/dev/null", O_RDWR | O_CLOEXEC), kind);
  const AnsweredIoctl driver(LPGETSTATUS, [status](void* answer) {
    *static_cast<int*>(answer) = status;
    return 0;
  });
  return printer.portState();
}

TEST(PortState, ReportsWhyTheUsbPrinterDoesNotPrint) {
  const std::pair<int, const char*> states[] = {
      {ready, ""},
      {ready | LP_POUTPA, "paper out"},
      {LP_PSELECD, "error"},
      {LP_PERRORP, "off line"},
  };
  for (const auto& [status, reason] : states) {
    EXPECT_EQ(stateOf(Descriptor::Kind::UsbPrinter, status), reason);
  }
}

TEST(PortState, OfAPrinterThatCannotAnswerSaysThatNoJobCanBeConfirmed) {
  const std::string mute = "the device takes bytes but cannot answer, so no job can be confirmed";
  EXPECT_EQ(stateOf(Descriptor::Kind::MuteUsbPrinter, ready), mute);
  EXPECT_EQ(stateOf(Descriptor::Kind::MuteUsbPrinter, ready | LP_POUTPA), "paper out; " + mute);
}

TEST(PortState, IsEmptyForOtherKindsOfDescriptors) {
  EXPECT_EQ(stateOf(Descriptor::Kind::Terminal, ready | LP_POUTPA), "");
}

}  // namespace
}  // namespace quordalvane::posix
