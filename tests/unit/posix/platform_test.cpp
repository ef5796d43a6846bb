#include <gtest/gtest.h>
#include <sys/utsname.h>

#include <csignal>
#include <thread>

#include "backends/posix/LinkAccessory.h"
#include "backends/posix/PosixPlatform.h"
#include "platform/Forwarding.h"

namespace quordalvane::posix {
namespace {

std::shared_ptr<EAAccessory> accessory() {
  return std::make_shared<LinkAccessory>(
      AccessoryIdentity{}, []() -> Descriptor { throw std::runtime_error("never connected"); });
}

TEST(PosixPlatform, ListsAccessoriesInTheOrderOfTheirAttachment) {
  const auto first = accessory();
  const auto second = accessory();
  const auto third = accessory();
  PosixPlatform platform({first, second});
  auto& manager = platform.sharedAccessoryManager();
  const auto before = manager.connectedAccessories();
  platform.attach(third);
  EXPECT_EQ(before, (std::vector{first, second}));
  EXPECT_EQ(manager.connectedAccessories(), (std::vector{first, second, third}));
}

TEST(PosixPlatform, OmitsAnAccessoryThatAnnouncesNoProtocol) {
  class Pulled : public ForwardingAccessory {
   public:
    using ForwardingAccessory::ForwardingAccessory;
    std::vector<std::string> protocolStrings() override {
      return isPluggedIn ? ForwardingAccessory::protocolStrings() : std::vector<std::string>();
    }
    bool isPluggedIn = false;
  };
  const auto first = accessory();
  const auto pulled = std::make_shared<Pulled>(accessory());
  PosixPlatform platform({first, pulled});
  auto& manager = platform.sharedAccessoryManager();
  EXPECT_EQ(manager.connectedAccessories(), (std::vector{first}));
  pulled->isPluggedIn = true;
  EXPECT_EQ(manager.connectedAccessories(),
            (std::vector<std::shared_ptr<EAAccessory>>{first, pulled}));
  pulled->isPluggedIn = false;
  EXPECT_EQ(manager.connectedAccessories(), (std::vector{first}));
}

TEST(PosixPlatform, HasNoAccessoriesByDefault) {
  EXPECT_TRUE(PosixPlatform().sharedAccessoryManager().connectedAccessories().empty());
}

TEST(PosixPlatform, DoesNotReadBluetoothAddresses) {
  EXPECT_FALSE(PosixPlatform().sharedAccessoryManager().readsAddresses());
}

TEST(PosixPlatform, NamesTheKernelsReleaseAsTheSystemVersion) {
  utsname names{};
  ASSERT_EQ(::uname(&names), 0);
  EXPECT_EQ(PosixPlatform().currentDevice().systemVersion(), names.release);
}

TEST(PosixPlatform, RecognisesTheMainThread) {
  PosixPlatform platform;
  EXPECT_TRUE(platform.isMainThread());
  std::thread([&] { EXPECT_FALSE(platform.isMainThread()); }).join();
}

TEST(PosixPlatform, IgnoresTheBrokenPipeSignalAfterEachCallOfIgnoreSigPipe) {
  PosixPlatform platform;
  for (int i = 0; i < 2; ++i) {
    std::signal(SIGPIPE, SIG_DFL);
    platform.ignoreSigPipe();
    EXPECT_EQ(std::signal(SIGPIPE, SIG_DFL), SIG_IGN);
  }
}

TEST(PosixPlatform, MakesThreadsWithoutStartingThem) {
  bool ran = false;
  const auto thread = PosixPlatform().makeThread([&] { ran = true; });
  ASSERT_NE(thread, nullptr);
  EXPECT_FALSE(thread->performAndWait([] {}));
  EXPECT_FALSE(ran);
}

}  // namespace
}  // namespace quordalvane::posix
