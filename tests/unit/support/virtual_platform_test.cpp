#include "tests/support/VirtualPlatform.h"

#include <gtest/gtest.h>

#include <csignal>

namespace quordalvane::test {
namespace {

TEST(VirtualPlatform, IgnoresTheBrokenPipeSignalAfterEachCallOfIgnoreSigPipe) {
  VirtualPlatform platform;
  for (int i = 0; i < 2; ++i) {
    std::signal(SIGPIPE, SIG_DFL);
    platform.ignoreSigPipe();
    EXPECT_EQ(std::signal(SIGPIPE, SIG_DFL), SIG_IGN);
  }
}

}  // namespace
}  // namespace quordalvane::test
