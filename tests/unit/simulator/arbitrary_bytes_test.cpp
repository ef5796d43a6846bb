#include <gtest/gtest.h>

#include <random>

#include "simulator/CommandLengths.h"
#include "simulator/TextRendering.h"
#include "simulator/drawing/ImageRendering.h"
#include "tests/unit/simulator/Session.h"

namespace quordalvane::simulator {
namespace {

// Random bytes. About half of them are bytes that often occur in commands.
Bytes randomBytes(std::mt19937_64& chance, std::size_t most) {
  constexpr std::uint8_t likely[] = {0x1b, 0x1d, 0x1c, 0x10, 0x00, 0x01, 0x02, 0x0a, 0x17, 0x1d,
                                     0x1b, 0x2a, 0x28, 0x4c, 0x6b, 0x76, 0x30, 0x70, 0x31, 0x03};
  Bytes bytes(chance() % (most + 1));
  for (std::uint8_t& byte : bytes)
    byte = chance() % 2 == 0 ? likely[chance() % std::size(likely)]
                             : static_cast<std::uint8_t>(chance());
  return bytes;
}

TEST(RandomBytes, AddAtMostOneItemPerByteToThePaper) {
  std::mt19937_64 chance(1);
  for (int run = 0; run < 5'000; ++run) {
    Session session;
    ASSERT_TRUE(session.send(randomBytes(chance, 200)));
    EXPECT_EQ(session.printer.buffered() <= 5, true) << "run " << run;
    EXPECT_LE(session.printer.paper().items().size(), 201U) << "run " << run;
  }
}

TEST(RandomBytes, HaveTheSameEffectIfTheyArriveByteByByte) {
  std::mt19937_64 chance(2);
  for (int run = 0; run < 500; ++run) {
    const Bytes bytes = randomBytes(chance, 200);
    Session whole;
    whole.send(bytes);
    Session single;
    for (std::uint8_t byte : bytes)
      single.send(Bytes{byte});
    ASSERT_EQ(whole.receive(), single.receive()) << "run " << run;
    ASSERT_EQ(whole.printer.printed(), single.printer.printed()) << "run " << run;
    ASSERT_EQ(renderText(whole.printer.paper()), renderText(single.printer.paper())) << run;
  }
}

TEST(RandomBytes, DoNotPreventAnswersToTheNextConnection) {
  std::mt19937_64 chance(3);
  for (int run = 0; run < 2'000; ++run) {
    Session session(PrinterBuilder().speed(100));
    session.send(randomBytes(chance, 100));
    session.reconnect();
    EXPECT_EQ(session.ask("100401"), hex("12")) << "run " << run;
  }
}

TEST(RandomBytes, CanAlwaysBeDrawnAsAPicture) {
  std::mt19937_64 chance(4);
  for (int run = 0; run < 30; ++run) {
    Session session;
    session.send(randomBytes(chance, 400));
    const Picture picture = renderPicture(session.printer.paper());
    EXPECT_GT(picture.height, 0U) << "run " << run;
    EXPECT_LE(picture.height, longestPaper) << "run " << run;
  }
}

TEST(RandomBytes, NeverMakeAnIncompleteCommandLookComplete) {
  std::mt19937_64 chance(5);
  for (int run = 0; run < 100'000; ++run) {
    const Dialect dialect = run % 2 == 0 ? Dialect() : Dialect{Proofs(), false};
    Bytes bytes = randomBytes(chance, 12);
    bytes.push_back(static_cast<std::uint8_t>(chance()));
    std::uint64_t needed = 1;
    for (std::size_t count = 1; count <= bytes.size(); ++count) {
      if (count < needed)
        continue;
      needed = leastCommandLength(std::span(bytes).first(count), dialect);
      ASSERT_GE(needed, count) << "run " << run;
      if (needed == count)
        break;
    }
  }
}

TEST(HugeCount, TakesNoMemoryUntilItsBytesArrive) {
  Session session;
  session.send("1d384c ffffffff 30 70");
  session.send("1d7630 00 ffff ffff");
  EXPECT_TRUE(session.printer.paper().items().empty());
  EXPECT_EQ(session.printer.buffered(), 0U);
}

TEST(EndlessJob, TakesBoundedMemoryIfItMovesNoPaper) {
  for (const char* command : {"1d56 00", "1b64 00", "1b24 0000 41", "1b24 0000 1b2a 00 0100 ff"}) {
    Session session;
    const Bytes once = hex(command);
    for (int i = 0; i < 20'000; ++i)
      session.send(once);
    session.send(ascii("\n"));
    std::size_t pieces = 0;
    for (const PaperItem& item : session.printer.paper().items())
      pieces += std::holds_alternative<Line>(item) ? std::get<Line>(item).items.size() : 1;
    EXPECT_GT(pieces, 0U) << command;
    EXPECT_LE(pieces, 8U * widePaperDots) << command;
  }
}

TEST(EndlessJob, IsDividedIntoPapersOfBoundedSize) {
  const std::pair<const char*, Bytes> jobs[] = {
      {"text", Bytes(100, 'x') + ascii("\n")},
      {"images", hex("1d7630 00 4800 0a00") + Bytes(720, 0xaa)},
      {"bar codes", hex("1d6b49 0a 41424344454647484940")},
  };
  for (const auto& [what, piece] : jobs) {
    std::vector<Paper> papers;
    Session session;
    session.printer.keepJobs([&](Paper paper) { papers.push_back(std::move(paper)); });
    while (papers.empty()) {
      session.send(piece);
    }
    EXPECT_TRUE(papers[0].goesOn()) << what;
    EXPECT_LT(papers[0].weight(), heaviestPaper + 10'000) << what;
    EXPECT_LT(session.printer.paper().weight(), 10'000U) << what;
  }
}

TEST(EndlessJob, InPageModeIsDividedIntoPagesOfBoundedSize) {
  Session session;
  session.send("1b4c");
  const Bytes line = Bytes(100, 'x') + ascii("\n");
  int lines = 0;
  constexpr int tooMany = 50'000;
  for (; session.printer.paper().items().empty() && lines < tooMany; ++lines)
    session.send(line);
  EXPECT_LT(lines, tooMany) << "no page was printed";
}

TEST(EndlessJob, HasAShortReceiptTextIfItOnlyFeedsPaper) {
  Session session;
  Bytes job = hex("1d2100");
  for (int i = 0; i < 10'000; ++i)
    job = std::move(job) + hex("1b64ff");
  std::size_t sent = 0;
  while (sent < job.size())
    sent += session.link->write(std::span(job).subspan(sent), session.now);
  EXPECT_LT(renderText(session.printer.paper()).size(), 100U);
  EXPECT_EQ(session.printer.paper().items().size(), 1U);
}

}  // namespace
}  // namespace quordalvane::simulator
