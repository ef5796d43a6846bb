#include "journal/Journal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>

#include <array>
#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <thread>

#include "journal/History.h"
#include "journal/JournalFile.h"
#include "journal/Rows.h"
#include "tests/unit/journal/JournalCase.h"
#include "tests/unit/journal/StatementHook.h"

namespace quordalvane {
namespace {

using testing::AllOf;
using testing::HasSubstr;

constexpr std::int64_t dayMillis = std::int64_t{24} * 60 * 60 * 1000;

unsigned modeOf(const std::string& path) {
  struct stat found = {};
  EXPECT_EQ(::stat(path.c_str(), &found), 0) << path;
  return found.st_mode & 07777U;
}

/// Changes a file with SQLite only, without the journal's code.
void execute(const std::string& file, const std::string& sql) {
  sqlite3* database = nullptr;
  ASSERT_EQ(sqlite3_open(file.c_str(), &database), SQLITE_OK);
  ASSERT_EQ(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
      << sqlite3_errmsg(database);
  sqlite3_close(database);
}

std::string contentOf(const std::string& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

void setContent(const std::string& file, const std::string& content) {
  std::ofstream(file, std::ios::binary | std::ios::trunc) << content;
}

class JournalTest : public JournalCase {
 protected:
  std::string openError() {
    return errorOf<JournalError>([this] { Journal(file).jobs(); });
  }
};

TEST_F(JournalTest, CreatesItsFileAndFoldersForThisUserAlone) {
  const std::string deep = folder.file("one/two/jobs.db");
  Journal journal(deep);
  EXPECT_EQ(modeOf(folder.file("one")), 0700U);
  EXPECT_EQ(modeOf(folder.file("one/two")), 0700U);
  for (const auto& entry : std::filesystem::directory_iterator(folder.file("one/two"))) {
    EXPECT_EQ(modeOf(entry.path()), 0600U) << entry.path();
  }
  EXPECT_TRUE(journal.jobs().empty());
}

TEST_F(JournalTest, UsesAFileInTheStateFolderByDefault) {
  ::setenv("XDG_STATE_HOME", "/somewhere/state", 1);
  EXPECT_EQ(Journal::defaultFile(), "/somewhere/state/quorport/jobs.db");
  ::setenv("XDG_STATE_HOME", "relative", 1);
  ::setenv("HOME", "/home-of-one", 1);
  EXPECT_EQ(Journal::defaultFile(), "/home-of-one/.local/state/quorport/jobs.db");
  ::unsetenv("XDG_STATE_HOME");
  EXPECT_EQ(Journal::defaultFile(), "/home-of-one/.local/state/quorport/jobs.db");
  ::unsetenv("HOME");
  EXPECT_THROW(Journal::defaultFile(), JournalError);
}

TEST_F(JournalTest, RecordsItsVersionInTheFile) {
  { const Journal journal(file); }
  sqlite3* database = nullptr;
  ASSERT_EQ(sqlite3_open(file.c_str(), &database), SQLITE_OK);
  sqlite3_stmt* statement = nullptr;
  sqlite3_prepare_v2(database, "PRAGMA user_version", -1, &statement, nullptr);
  EXPECT_EQ(sqlite3_step(statement), SQLITE_ROW);
  EXPECT_EQ(sqlite3_column_int(statement, 0), 3);
  sqlite3_finalize(statement);
  sqlite3_close(database);
}

TEST_F(JournalTest, RefusesAFileOfALaterVersionAndLeavesTheFileUnchanged) {
  { const Journal journal(file); }
  execute(file, "PRAGMA user_version = 1000; CREATE TABLE later (x)");
  const std::string before = contentOf(file);
  EXPECT_THAT(openError(), AllOf(HasSubstr(file), HasSubstr("version 1000")));
  EXPECT_EQ(contentOf(file), before);
}

TEST_F(JournalTest, RefusesAFileOfAnotherProgram) {
  setContent(file, std::string(5000, 'x'));
  EXPECT_THAT(openError(), AllOf(HasSubstr(file), HasSubstr("not a journal")));
  EXPECT_EQ(contentOf(file), std::string(5000, 'x'));
  setContent(file, "");
  EXPECT_THAT(openError(), HasSubstr("not a journal, but an empty file"));
  std::filesystem::remove(file);
  execute(file, "CREATE TABLE songs (title); PRAGMA user_version = 1");
  EXPECT_THAT(openError(), HasSubstr("another program's database"));
}

TEST_F(JournalTest, NamesTheFileAndTheReasonIfItCannotBeOpened) {
  std::filesystem::create_directory(file);
  EXPECT_THAT(openError(), HasSubstr(file));
  setContent(folder.file("plain"), "");
  EXPECT_THAT(errorOf<JournalError>([&] { Journal(folder.file("plain/jobs.db")); }),
              HasSubstr("plain/jobs.db: "));
  EXPECT_THAT(errorOf<JournalError>([&] { Journal(""); }), HasSubstr("empty"));
}

TEST_F(JournalTest, IsTheSameIfItIsOpenedThroughASymbolicLink) {
  Journal journal(file);
  std::filesystem::create_symlink(file, folder.file("link"));
  Journal linked(folder.file("link"));
  EXPECT_EQ(journal.file(), linked.file());
}

TEST_F(JournalTest, IsRefusedWhileItHasASecondNameAsAHardLink) {
  { const Journal journal(file); }
  std::filesystem::create_hard_link(file, folder.file("second"));
  EXPECT_THAT(openError(), HasSubstr("second name"));
  EXPECT_THAT(errorOf<JournalError>([&] { Journal(folder.file("second")); }),
              HasSubstr("second name"));
  EXPECT_FALSE(std::filesystem::exists(lockFileOf(folder.file("second"))));
  std::filesystem::remove(folder.file("second"));
  EXPECT_EQ(openError(), "");
}

TEST_F(JournalTest, IsCreatedAgainIfItsCreationWasInterrupted) {
  setContent(file + ".new", "half a database");
  setContent(file + ".new-wal", "its log");
  EXPECT_EQ(openError(), "");
  EXPECT_FALSE(std::filesystem::exists(file + ".new-wal"));
}

TEST_F(JournalTest, ReportsChangedRowsAsDamage) {
  Till till(ZKEmulationQuorLine);
  print(till, "receipt 1");
  print(till, "receipt 2");
  const std::string whole = contentOf(file);
  for (const char* const damage :
       {"DELETE FROM attempt WHERE name = 'receipt 2'", "UPDATE attempt SET outcome = 'refused'",
        "UPDATE attempt SET number = 2 WHERE name = 'receipt 1'", "DELETE FROM seal"}) {
    execute(file, damage);
    EXPECT_THAT(openError(), HasSubstr("damaged")) << damage;
    setContent(file, whole);
    EXPECT_EQ(openError(), "");
  }
}

TEST_F(JournalTest, CanBeOpenedWhileAnotherProcessPrints) {
  Till till(ZKEmulationQuorLine);
  print(till, "receipt 1");
  Journal other(file);
  StatementHook hook(StatementHook::Moment::Begin, "SELECT digest");
  hook.callOnce([&] {
    NamedJob named(other, request("receipt 2"), receiptText);
    PrintJob job(till.port, named.recorded());
    EXPECT_EQ(named.run(job).notRecorded, "");
  });
  EXPECT_EQ(openError(), "");
  EXPECT_TRUE(hook.hasCalled());
}

TEST_F(JournalTest, ShowsTheOutcomeOfAJobThatEndsWhileTheJournalIsRead) {
  { const Journal made(file); }
  Database other(file);
  const Attempt begun{.name = "receipt 1", .number = 1, .begun = 1};
  insertRow(other, begun);
  auto lock = ByteLock::tryTake(lockFileOf(file), lockOffset(begun.name), modeOfLocks);
  StatementHook hook(StatementHook::Moment::End, "ORDER BY name");
  Journal journal(file);
  hook.callOnce([&] {
    Attempt ended = begun;
    ended.ended = 2;
    ended.outcome = nameOf(PrintOutcome::Printed);
    deleteRow(other, begun);
    insertRow(other, ended);
    lock.reset();
  });
  EXPECT_EQ(journal.jobs().front().state, JobState::Printed);
}

TEST_F(JournalTest, NamesItsFileIfItsLocksAreUnusable) {
  Till till(ZKEmulationQuorLine);
  print(till, "receipt 1");
  Journal journal(file);
  std::filesystem::remove(lockFileOf(file));
  std::filesystem::create_symlink("elsewhere", lockFileOf(file));
  EXPECT_THAT(errorOf<JournalError>([&] { journal.forget("receipt 1"); }),
              HasSubstr(file + ": its locks cannot be used: "));
  EXPECT_THAT(errorOf<JournalError>([&] { NamedJob(journal, request("receipt 2"), receiptText); }),
              HasSubstr(file + ": its locks cannot be used: "));
}

TEST_F(JournalTest, ForgetsAJobByItsName) {
  Till till(ZKEmulationQuorLine);
  print(till, "receipt 1");
  print(till, "receipt 2");
  EXPECT_EQ(Journal(file).forget("receipt 1"), Forgetting::Forgotten);
  EXPECT_EQ(Journal(file).forget("receipt 1"), Forgetting::Unknown);
  EXPECT_EQ(onlyJob().name, "receipt 2");
  EXPECT_FALSE(print(till, "receipt 1").isRepeated);
}

TEST_F(JournalTest, DoesNotForgetAJobThatIsBeingPrinted) {
  Journal journal(file);
  const NamedJob held(journal, request("receipt 1"), receiptText);
  EXPECT_EQ(Journal(file).forget("receipt 1"), Forgetting::BeingPrinted);
}

TEST_F(JournalTest, ForgetsEachJobExactlyOnceIfTwoThreadsTry) {
  Till till(ZKEmulationQuorLine);
  constexpr int jobs = 50;
  std::array<std::atomic<int>, 3> answers = {};
  const auto forgetAll = [&] {
    Journal journal(file);
    for (int job = 0; job < jobs; ++job) {
      ++answers.at(static_cast<std::size_t>(journal.forget("receipt " + std::to_string(job))));
    }
  };
  for (int job = 0; job < jobs; ++job) {
    print(till, "receipt " + std::to_string(job));
  }
  std::thread other(forgetAll);
  forgetAll();
  other.join();
  EXPECT_EQ(answers.at(static_cast<std::size_t>(Forgetting::Forgotten)), jobs);
  EXPECT_EQ(answers.at(static_cast<std::size_t>(Forgetting::BeingPrinted)), 0);
}

TEST_F(JournalTest, ShowsAPrintedJobAsPrintedEvenWhileTheJobIsRequestedAgain) {
  Till till(ZKEmulationQuorLine);
  print(till, "receipt 1");
  Journal journal(file);
  const NamedJob asked(journal, request("receipt 1"), receiptText);
  EXPECT_EQ(onlyJob().state, JobState::Printed);
}

TEST_F(JournalTest, ForgetsOnlyJobsOlderThanTheGivenDays) {
  Till till(ZKEmulationQuorLine);
  print(till, "receipt 1");
  {
    Database database(file);
    insertRow(database, {.name = "old", .number = 1, .begun = millisecondsNow() - 2 * dayMillis});
  }
  EXPECT_EQ(Journal(file).forgetOlderThan(3), 0U);
  EXPECT_EQ(Journal(file).forgetOlderThan(1), 1U);
  EXPECT_EQ(onlyJob().name, "receipt 1");
}

TEST_F(JournalTest, DoesNotForgetAnOldJobThatWasRepeatedToday) {
  { const Journal made(file); }
  {
    Database database(file);
    insertRow(database, {.name = "old", .number = 1, .begun = millisecondsNow() - 2 * dayMillis});
    insertRow(database,
              {.name = "old", .number = 2, .begun = millisecondsNow(), .outcome = "refused"});
  }
  EXPECT_EQ(Journal(file).forgetOlderThan(1), 0U);
  EXPECT_EQ(onlyJob().state, JobState::Unconfirmed);
}

TEST_F(JournalTest, DoesNotContainTheDataOfAJob) {
  Till till(ZKEmulationQuorLine);
  print(till, "receipt 1");
  EXPECT_THAT(contentOf(file), HasSubstr("receipt 1"));
  EXPECT_THAT(contentOf(file), testing::Not(HasSubstr("Espresso")));
}

TEST(NetworkFileSystem, IsRecognisedByItsName) {
  EXPECT_EQ(networkFileSystem(0x6969), "NFS");
  EXPECT_EQ(networkFileSystem(0xff534d42), "CIFS");
  EXPECT_EQ(networkFileSystem(static_cast<unsigned long>(static_cast<int>(0xff534d42))), "CIFS");
  EXPECT_EQ(networkFileSystem(0x01021997), "9P");
  EXPECT_EQ(networkFileSystem(0xef53), std::nullopt);      // ext4
  EXPECT_EQ(networkFileSystem(0x01021994), std::nullopt);  // a file system in memory
}

}  // namespace
}  // namespace quordalvane
