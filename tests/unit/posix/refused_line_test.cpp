#include <asm/termbits.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <functional>
#include <system_error>

#include "backends/posix/Serial.h"
#include "backends/posix/UsbAccessory.h"
#include "tests/support/PseudoTerminal.h"
#include "tests/unit/posix/SystemCalls.h"

// Serial lines that the driver refuses to open, or whose settings the driver refuses.
namespace quordalvane::posix {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class RefusedLine : public testing::Test {
 protected:
  const std::string& path() const { return terminal_.line; }

  /// Returns the reason why `open` fails.
  static std::system_error failure(const std::function<void()>& open) {
    try {
      open();
    } catch (const std::system_error& error) {
      return error;
    }
    return {std::error_code(), "it opened"};
  }

 private:
  const test::PseudoTerminal terminal_ = test::openPseudoTerminal();
  const Descriptor master_{terminal_.master, Descriptor::Kind::Terminal};
};

/// While this object exists, this process has no rights of root. The function `is` returns false if
/// the process could not give up these rights.
class OrdinaryUser {
 public:
  OrdinaryUser() : before_(::geteuid()), is_(before_ != 0 || ::seteuid(nobody) == 0) {}
  ~OrdinaryUser() {
    EXPECT_EQ(::seteuid(before_), 0);
    ::prctl(PR_SET_DUMPABLE, 1);  // changing the user ID has hidden this process from others
  }
  OrdinaryUser(const OrdinaryUser&) = delete;
  OrdinaryUser& operator=(const OrdinaryUser&) = delete;

  bool is() const { return is_; }

 private:
  static constexpr uid_t nobody = 65534;

  const uid_t before_;
  const bool is_;
};

TEST_F(RefusedLine, IsInUseIfItIsInExclusiveMode) {
  ASSERT_EQ(::chmod(path().c_str(), 0666), 0);
  const Descriptor holder(::open(path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC),
                          Descriptor::Kind::Terminal);
  ASSERT_EQ(::ioctl(holder.number(), TIOCEXCL), 0);
  const OrdinaryUser user;
  if (!user.is()) {
    GTEST_SKIP() << "this system lets root do everything";
  }
  UsbPrinter printer;
  printer.node = path();
  const std::function<void()> opens[] = {[this] { openSerial(path()); },
                                         [&printer] { openUsbPrinter(printer); }};
  for (const auto& open : opens) {
    const std::system_error error = failure(open);
    EXPECT_EQ(error.code(), std::errc::device_or_resource_busy);
    EXPECT_THAT(error.what(), AllOf(HasSubstr(path()), HasSubstr("in use by another program")));
  }
}

TEST_F(RefusedLine, NamesThePathIfTheDriverRefusesTheSettings) {
  constexpr unsigned long requests[] = {TCSETS2, TCGETS2};
  for (const unsigned long request : requests) {
    const AnsweredIoctl driver(request, [](void*) {
      errno = EIO;
      return -1;
    });
    const std::system_error error = failure([this] { openSerial(path()); });
    EXPECT_EQ(error.code(), std::errc::io_error);
    EXPECT_THAT(error.what(), HasSubstr(path()));
  }
}

}  // namespace
}  // namespace quordalvane::posix
