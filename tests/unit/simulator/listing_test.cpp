#include <gtest/gtest.h>

#include "simulator/CommandListing.h"
#include "simulator/CommandNames.h"
#include "simulator/JobBytes.h"
#include "tests/unit/simulator/Session.h"

namespace quordalvane::simulator {
namespace {

std::vector<std::string> namesIn(const Listing& listing) {
  std::vector<std::string> names;
  for (const ListedCommand& command : listing.commands) {
    names.push_back(command.name);
  }
  return names;
}

using Names = std::vector<std::string>;

TEST(CommandName, IsTheNameInPrinterManuals) {
  EXPECT_EQ(nameOf(hex("1d 56 00")).name, "GS V");
  EXPECT_EQ(nameOf(hex("1d 28 6b 03 00 31 43 05")).name, "GS ( k");
  EXPECT_EQ(nameOf(hex("1b 1d 03 01 00 00")).meaning, "end of block, with a report");
  EXPECT_EQ(nameOf(hex("0a")).name, "LF");
  EXPECT_EQ(nameOf(hex("41")).name, "text");
  EXPECT_EQ(nameOf(hex("1d ff 00")).meaning, "");
}

TEST(CommandListing, JoinsCharactersIntoTextAndNamesCommands) {
  const Bytes job = hex("1b 40 48 69 0a 1d 79 00 1b");
  const Listing listing = listCommands(job, Dialect(), 0, 100);
  EXPECT_EQ(namesIn(listing), (Names{"ESC @", "text", "LF", "GS y", "NUL", "cut off"}));
  EXPECT_EQ(listing.commands[1].meaning, "Hi");
  EXPECT_EQ(listing.commands[1].length, 2U);
  EXPECT_FALSE(listing.commands[3].isKnown);
  EXPECT_EQ(listing.next, job.size());
}

TEST(CommandListing, ExplainsEachKnownCommand) {
  for (const unsigned lead : {0x10U, 0x12U, 0x1bU, 0x1cU, 0x1dU, 0x1fU}) {
    for (unsigned selector = 0; selector <= 0xff; ++selector) {
      Bytes job(300, 0);
      job[0] = static_cast<std::uint8_t>(lead);
      job[1] = static_cast<std::uint8_t>(selector);
      const ListedCommand command = listCommands(job, Dialect(), 0, 1).commands.at(0);
      EXPECT_EQ(command.meaning.empty(), !command.isKnown) << command.name;
    }
  }
}

TEST(CommandListing, CanBeReadInConsecutiveParts) {
  const Bytes job = hex("41 0a 42 0a 43 0a");
  const Listing first = listCommands(job, Dialect(), 0, 3);
  EXPECT_EQ(namesIn(first), (Names{"text", "LF", "text"}));
  EXPECT_EQ(first.next, 3U);
  EXPECT_EQ(namesIn(listCommands(job, Dialect(), first.next, 3)), (Names{"LF", "text", "LF"}));
}

TEST(JobBytes, AreStoredUpToALimitAndCountedBeyondTheLimit) {
  JobBytes bytes;
  bytes.receive(hex("01 02 03 04 05"));
  bytes.pass(3);
  const auto first = bytes.take();
  EXPECT_EQ(first.bytes, hex("01 02 03"));
  bytes.pass(5);
  EXPECT_EQ(bytes.take().bytes, hex("04 05"));
  bytes.receive(Bytes(JobBytes::mostKept + 100, 7));
  bytes.pass(5 + JobBytes::mostKept + 100);
  const auto longOne = bytes.take();
  EXPECT_EQ(longOne.bytes.size(), JobBytes::mostKept);
  EXPECT_EQ(longOne.count, JobBytes::mostKept + 100);
}

TEST(JobRecord, CountsOffsetsFromTheStartOfItsJobEvenIfTheEarlierJobWasIncomplete) {
  std::vector<JobRecord> records;
  VirtualPrinter printer(PrinterBuilder().keepReceived().state());
  printer.keepJobs([&](const Paper& paper) { records.push_back(paper.record()); });
  for (const char* const job : {"41 0a 1d", "42 0a 1d 79"}) {
    const auto connection = printer.connect({});
    printer.receive(hex(job), Instant{});
    printer.disconnect(connection);
  }
  ASSERT_EQ(records.size(), 2U);
  EXPECT_EQ(records[0].received(), hex("41 0a 1d"));
  EXPECT_EQ(records[1].received(), hex("42 0a 1d 79"));
  ASSERT_EQ(records[1].unknown().size(), 1U);
  EXPECT_EQ(records[1].unknown()[0].offset, 2U);
}

TEST(JobRecord, CountsOffsetsFromTheStartOfItsJobEvenIfTheEarlierJobVanished) {
  std::vector<JobRecord> records;
  VirtualPrinter printer(PrinterBuilder().state());
  printer.keepJobs([&](const Paper& paper) { records.push_back(paper.record()); });
  for (const bool vanish : {true, false}) {
    const auto connection = printer.connect({});
    printer.receive(hex("42 0a 1d 79"), Instant{}, vanish);
    printer.disconnect(connection);
  }
  ASSERT_EQ(records.size(), 1U);
  ASSERT_EQ(records[0].unknown().size(), 1U);
  EXPECT_EQ(records[0].unknown()[0].offset, 2U);
}

TEST(SettingForm, OffersOnlyValuesThatTheSettingAccepts) {
  PrinterState state;
  for (const SettingForm& form : settingForms()) {
    const auto value = state.get(form.key);
    if (value) {
      EXPECT_NO_THROW(state.set(form.key, *value)) << form.key;
    }
    for (const std::string_view choice : form.choices) {
      EXPECT_NO_THROW(state.set(form.key, choice)) << form.key;
    }
  }
}

}  // namespace
}  // namespace quordalvane::simulator
