// The wait of a job for late answers to the requests of an earlier job.

#include "job/HearOut.h"

#include <gtest/gtest.h>

#include "job/EscPosAnswers.h"
#include "job/InOrderProof.h"
#include "tests/unit/job/Till.h"

namespace quordalvane {
namespace {

using std::chrono::seconds;

/// Calls `hearOut` on a link with the given faults to a virtual printer, and measures the time.
class Hearing : private TransferObserver {
 public:
  explicit Hearing(simulator::Faults faults = {}) {
    till_.reopenWith(std::move(faults));
    link_.setListener(this);
  }

  bool hearOut() {
    const auto start = link_.now();
    const bool isHeardOut =
        quordalvane::hearOut(link_, inOrderRequest, [this] { return answers_.inOrderCount(); });
    time = link_.now() - start;
    return isHeardOut;
  }

  std::uint64_t answers() const { return answers_.inOrderCount(); }

  std::chrono::nanoseconds time = {};

 private:
  void bytesWritten(ByteView /*bytes*/) override {}
  void bytesRead(ByteView bytes) override { answers_.feed(bytes); }

  Till till_{simulator::PrinterBuilder(), {.emulation = ZKEmulationESCPOS, .timeoutMillis = 3000}};
  const std::atomic<bool> cancelled_ = false;
  PortLink link_{till_.port, cancelled_};
  EscPosAnswers answers_;
};

TEST(WaitForLateAnswers, EndsAfterTwoRequestsWithOneAnswerAndOneSecondOfSilenceEach) {
  Hearing hearing;
  EXPECT_TRUE(hearing.hearOut());
  EXPECT_EQ(hearing.answers(), 2U);
  EXPECT_GE(hearing.time, seconds(2));
  EXPECT_LT(hearing.time, seconds(3));
}

TEST(WaitForLateAnswers, BeginsAgainAfterARequestWithTwoAnswers) {
  Hearing hearing(with("duplicate-reply", "2"));
  EXPECT_TRUE(hearing.hearOut());
  EXPECT_EQ(hearing.answers(), 1U + 2U + 1U + 1U);
}

TEST(WaitForLateAnswers, FailsAfterSixRequestsWithTwoAnswersEach) {
  Hearing hearing(with("duplicate-reply", "all"));
  EXPECT_FALSE(hearing.hearOut());
  EXPECT_EQ(hearing.answers(), 6U * 2U);
}

TEST(WaitForLateAnswers, FailsAtTheTimeoutIfThePrinterDoesNotAnswer) {
  Hearing hearing(with("drop-reply", "all"));
  EXPECT_FALSE(hearing.hearOut());
  EXPECT_GE(hearing.time, seconds(3));
  EXPECT_LT(hearing.time, seconds(4));
}

}  // namespace
}  // namespace quordalvane
