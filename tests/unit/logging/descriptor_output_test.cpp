#include "logging/DescriptorOutput.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <string>
#include <thread>

namespace quordalvane {
namespace {

TEST(DescriptorOutput, WritesAllBytesToAFullNonBlockingPipe) {
  std::array<int, 2> ends;
  ASSERT_EQ(::pipe2(ends.data(), O_NONBLOCK | O_CLOEXEC), 0);
  const std::string text(std::size_t{1} << 20U, 'x');
  std::string received;
  std::thread reader([&] {
    std::array<char, 4096> bytes;
    for (ssize_t count = 1; count != 0;) {
      count = ::read(ends[0], bytes.data(), bytes.size());
      if (count > 0) {
        received.append(bytes.data(), static_cast<std::size_t>(count));
      }
    }
  });
  const WriteOutcome outcome = writeAll(ends[1], text);
  ::close(ends[1]);
  reader.join();
  ::close(ends[0]);
  EXPECT_EQ(outcome.written, text.size());
  EXPECT_FALSE(outcome.error);
  EXPECT_EQ(received, text);
}

}  // namespace
}  // namespace quordalvane
