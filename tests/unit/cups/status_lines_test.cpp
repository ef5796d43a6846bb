#include "tools/cups-backend/StatusLines.h"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>

#include "tools/cups-backend/SideChannel.h"

namespace quordalvane::cups {
namespace {

/// The bytes that are written to a descriptor.
class Written {
 public:
  Written() { EXPECT_EQ(::pipe(ends_), 0); }
  ~Written() {
    ::close(ends_[0]);
    ::close(ends_[1]);
  }

  int descriptor() const { return ends_[1]; }

  std::string text() {
    std::string text(4096, '\0');
    text.resize(
        static_cast<std::size_t>(std::max<ssize_t>(0, ::read(ends_[0], text.data(), 4096))));
    return text;
  }

 private:
  int ends_[2] = {-1, -1};
};

TEST(StatusLines, HaveThePrefixesThatTheSchedulerReads) {
  Written written;
  StatusLines lines("", written.descriptor());
  lines.inform("waiting: cover open");
  lines.complain("unconfirmed");
  lines.note("again");
  lines.count(2, 1);
  EXPECT_EQ(written.text(),
            "INFO: waiting: cover open\nERROR: unconfirmed\nDEBUG: again\nPAGE: 2 1\n");
}

TEST(StatusLines, DoNotRepeatAnUnchangedState) {
  Written written;
  StatusLines lines("", written.descriptor());
  lines.inform("a");
  lines.inform("a");
  lines.inform("b");
  lines.inform("a");
  EXPECT_EQ(written.text(), "INFO: a\nINFO: b\nINFO: a\n");
}

TEST(StatusLines, EscapeControlCharactersAndLineFeeds) {
  Written written;
  StatusLines lines("", written.descriptor());
  lines.complain("a\nSTATE: paused\x1b[2J");
  EXPECT_EQ(written.text(), "ERROR: a\\nSTATE: paused\\u001b[2J\n");
  lines.complain(std::string(10000, 'x'));
  EXPECT_EQ(written.text().size(), 2001U);
}

TEST(StatusLines, ReportOnlyChangedStateReasons) {
  Written written;
  StatusLines lines("", written.descriptor());
  lines.setReasons({"cover-open-error", "offline-report"});
  lines.setReasons({"media-empty-error", "offline-report"});
  lines.setReasons({"media-empty-error", "offline-report"});
  lines.setReasons({});
  EXPECT_EQ(written.text(),
            "STATE: +cover-open-error,offline-report\n"
            "STATE: -cover-open-error\nSTATE: +media-empty-error\n"
            "STATE: -media-empty-error,offline-report\n");
}

TEST(StatusLines, RemoveTheStateReasonsOfAnEarlierProcess) {
  Written written;
  StatusLines lines("quor-unconfirmed-warning,toner-low-warning", written.descriptor());
  lines.setReasons({"offline-report"});
  EXPECT_EQ(written.text(), "STATE: -quor-unconfirmed-warning\nSTATE: +offline-report\n");
}

TEST(StatusLines, AreDiscardedWithoutAnErrorIfThePipeIsClosed) {
  std::signal(SIGPIPE, SIG_IGN);
  int ends[2];
  ASSERT_EQ(::pipe(ends), 0);
  ::close(ends[0]);
  StatusLines("", ends[1]).complain("nobody reads this");
  ::close(ends[1]);
}

QuorPrinterStatus_2 status(std::uint32_t QuorPrinterStatus_2::*flag) {
  QuorPrinterStatus_2 record{};
  record.*flag = 1;
  return record;
}

TEST(StateReasons, ShowThePrinterStatusInThePrintSystemsKeywords) {
  EXPECT_EQ(reasonsIn({}), StateReasons());
  EXPECT_EQ(reasonsIn(status(&QuorPrinterStatus_2::offline)), StateReasons{"offline-report"});
  EXPECT_EQ(reasonsIn(status(&QuorPrinterStatus_2::coverOpen)), StateReasons{"cover-open-error"});
  EXPECT_EQ(reasonsIn(status(&QuorPrinterStatus_2::receiptPaperEmpty)),
            StateReasons{"media-empty-error"});
  EXPECT_EQ(reasonsIn(status(&QuorPrinterStatus_2::receiptPaperNearEmptyInner)),
            StateReasons{"media-low-warning"});
  EXPECT_EQ(reasonsIn(status(&QuorPrinterStatus_2::receiptPaperNearEmptyOuter)),
            StateReasons{"media-low-warning"});
  EXPECT_EQ(reasonsIn(status(&QuorPrinterStatus_2::jamError)), StateReasons{"media-jam-error"});
  EXPECT_EQ(reasonsIn(status(&QuorPrinterStatus_2::stackerFull)),
            StateReasons{"output-area-full-error"});
  EXPECT_EQ(reasonsIn(status(&QuorPrinterStatus_2::headUpError)),
            StateReasons{"interlock-open-error"});
  EXPECT_EQ(reasonsIn(status(&QuorPrinterStatus_2::cutterError)), StateReasons{"other-error"});
}

TEST(StateReasons, IncludeOnlyReasonsThatTheBackEndReports) {
  EXPECT_TRUE(everyReason().count("quor-unconfirmed-warning"));
  EXPECT_TRUE(everyReason().count("cover-open-error"));
  EXPECT_FALSE(everyReason().count("toner-low-warning"));
}

TEST(SideChannelBits, ShowThePrinterStatus) {
  EXPECT_EQ(stateBitsOf({}), CUPS_SC_STATE_ONLINE);
  QuorPrinterStatus_2 record = status(&QuorPrinterStatus_2::receiptPaperEmpty);
  record.offline = 1;
  EXPECT_EQ(stateBitsOf(record), CUPS_SC_STATE_ERROR | CUPS_SC_STATE_MEDIA_EMPTY);
  EXPECT_EQ(stateBitsOf(status(&QuorPrinterStatus_2::receiptPaperNearEmptyInner)),
            CUPS_SC_STATE_ONLINE | CUPS_SC_STATE_MEDIA_LOW);
}

}  // namespace
}  // namespace quordalvane::cups
