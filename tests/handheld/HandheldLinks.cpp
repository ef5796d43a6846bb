#include <sys/socket.h>

#include <future>
#include <utility>

#include "backends/handheld/HandheldPlatform.h"
#include "tests/contract/DescriptorPeer.h"
#include "tests/contract/LinkContract.h"
#include "tests/handheld/Accessories.h"

// Tests the links of the handheld back end. The accessory service is a stand-in of these tests, and
// the run loops are GNUstep's.
namespace quordalvane::contract {
namespace {

class HandheldMaker : public LinkMaker {
 public:
  HandheldMaker() {
    test::plugIn({.connect = [this] {
      int ends[2];
      EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0);
      other_ = ends[1];
      return ends[0];
    }});
  }
  ~HandheldMaker() override { test::unplug(); }

  LinkTraits traits() const override { return {.knowsWhatIsOwed = false}; }
  Platform& platform() override { return platform_; }

  std::shared_ptr<EAAccessory> accessory() override {
    return platform_.sharedAccessoryManager().connectedAccessories().front();
  }

  std::unique_ptr<Peer> peer() override {
    return std::make_unique<DescriptorPeer>(std::exchange(other_, -1));
  }

 private:
  handheld::HandheldPlatform platform_;
  int other_ = -1;
};

/// The streams are on the run loop of the thread that uses them.
class SameThreadMaker : public HandheldMaker {};

/// The streams are on the run loop of another thread. This is the case if the main thread opens a
/// port.
class OtherThreadMaker : public HandheldMaker {
 public:
  OtherThreadMaker() { EXPECT_TRUE(thread_->start()); }
  ~OtherThreadMaker() override {
    isStopped_ = true;
    ended_.get_future().wait();
  }

  void onStreamThread(const std::function<void()>& routine) override {
    EXPECT_TRUE(thread_->performAndWait(routine));
  }

 private:
  std::atomic<bool> isStopped_ = false;
  std::promise<void> ended_;
  const std::shared_ptr<NSThread> thread_ = platform().makeThread([this] {
    while (!isStopped_) {
      platform().currentRunLoop().runUntilDate(0.1);
    }
    ended_.set_value();
  });
};

INSTANTIATE_TEST_SUITE_P(
    Handheld, LinkContract,
    testing::Values(LinkKind{"SameThread", [] { return std::make_unique<SameThreadMaker>(); }},
                    LinkKind{"OtherThread", [] { return std::make_unique<OtherThreadMaker>(); }}),
    kindName);

}  // namespace
}  // namespace quordalvane::contract
