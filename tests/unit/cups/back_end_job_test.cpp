#include "tools/cups-backend/BackEndJob.h"

#include <gtest/gtest.h>

#include <map>
#include <stdexcept>

#include "tools/cups-backend/JobBlocks.h"

namespace quordalvane::cups {
namespace {

using Variables = std::map<std::string, std::string>;

const Variables usual = {{"DEVICE_URI", "quor:/tcp/till:9100"},
                         {"CUPS_CACHEDIR", "/var/cache/cups"},
                         {"CUPS_REQUESTROOT", "/var/spool/cups"}};

BackEndJob parse(const std::vector<std::string>& arguments, const Variables& variables = usual) {
  return parseBackEndJob(arguments, [&](const char* name) {
    const auto found = variables.find(name);
    return found == variables.end() ? "" : found->second;
  });
}

TEST(BackEndJob, IsReadFromTheSchedulersArguments) {
  const BackEndJob job =
      parse({"quor:/tcp", "12", "anna", "receipt", "3",
             "media=a4 job-uuid=urn:uuid:4711 time-at-creation=1", "/spool/d12"});
  EXPECT_EQ(job.uri, "quor:/tcp/till:9100");
  EXPECT_EQ(job.number, "12");
  EXPECT_EQ(job.copies, 3U);
  EXPECT_EQ(job.name, "urn:uuid:4711");
  EXPECT_FALSE(job.ended);
  EXPECT_EQ(job.file, "/spool/d12");
  EXPECT_FALSE(job.isOfClass);
  EXPECT_EQ(job.journal, "/var/cache/cups/quor/jobs.db");
  EXPECT_EQ(job.controlFile, "/var/spool/cups/c00012");
}

TEST(BackEndJob, HasOneCopyIfItsDataIsReadFromAPipe) {
  const BackEndJob job = parse({"quor", "123456", "anna", "receipt", "3", "job-uuid=a"});
  EXPECT_FALSE(job.file);
  EXPECT_EQ(job.copies, 1U);
  EXPECT_EQ(job.controlFile, "/var/spool/cups/c123456");
}

TEST(BackEndJob, ReadsTheTimeOfTheJobsEarlierCompletion) {
  EXPECT_EQ(parse({"quor", "1", "a", "t", "1", "job-uuid=a time-at-completed=1795316641"}).ended,
            1795316641);
}

TEST(BackEndJob, IsOfAPrinterClassIfTheEnvironmentVariableClassIsSet) {
  Variables variables = usual;
  variables["CLASS"] = "tills";
  EXPECT_TRUE(parse({"quor", "1", "a", "t", "1", ""}, variables).isOfClass);
}

TEST(BackEndJob, GetsANewNameEachTimeIfItHasNoUuid) {
  const std::vector<std::string> arguments = {"quor", "1", "a", "t", "1", "xjob-uuid=a"};
  EXPECT_NE(parse(arguments).name, parse(arguments).name);
}

TEST(BackEndJob, TakesItsUriFromTheFirstArgumentIfTheVariableIsMissing) {
  EXPECT_EQ(
      parse({"quor:/usb", "1", "a", "t", "1", ""}, {{"HOME", "/"}, {"CUPS_CACHEDIR", "/c"}}).uri,
      "quor:/usb");
}

TEST(BackEndJob, RefusesAWrongNumberOfArgumentsOrCopies) {
  EXPECT_THROW(parse({"quor", "1", "a", "t", "1"}), std::invalid_argument);
  EXPECT_THROW(parse({"quor", "1", "a", "t", "1", "", "f", "g"}), std::invalid_argument);
  for (const char* copies : {"0", "-1", "10000", "two", ""}) {
    EXPECT_THROW(parse({"quor", "1", "a", "t", copies, "", "f"}), std::invalid_argument) << copies;
  }
}

TEST(BlocksOfAJob, ContainOneCopyEach) {
  BackEndJob job;
  job.name = "receipt";
  job.copies = 2;
  const auto blocks = blocksOf(job, {});
  ASSERT_EQ(blocks.size(), 2U);
  EXPECT_EQ(blocks[0].name, "receipt copy 1");
  EXPECT_EQ(blocks[1].name, "receipt copy 2");
  EXPECT_EQ(blocks[1].number, 2U);
  EXPECT_EQ(blocks[1].copies, 1U);
  EXPECT_EQ(dataOf(blocks[1], {'a', 'b'}), (std::vector<std::uint8_t>{'a', 'b'}));
}

TEST(BlocksOfAJob, AreASingleBlockIfTheCopiesAreConfirmedTogether) {
  BackEndJob job;
  job.name = "receipt";
  job.copies = 2;
  DeviceUri uri;
  uri.areCopiesTogether = true;
  const auto blocks = blocksOf(job, uri);
  ASSERT_EQ(blocks.size(), 1U);
  EXPECT_EQ(blocks[0].name, "receipt");
  EXPECT_EQ(blocks[0].copies, 2U);
  EXPECT_EQ(dataOf(blocks[0], {'a', 'b'}), (std::vector<std::uint8_t>{'a', 'b', 'a', 'b'}));
}

TEST(BlocksOfAJob, HaveTheNameOfTheJobIfThereIsOneCopy) {
  BackEndJob job;
  job.name = "receipt";
  EXPECT_EQ(blocksOf(job, {}).at(0).name, "receipt");
}

}  // namespace
}  // namespace quordalvane::cups
