// Journals of earlier versions are converted with their whole content.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <string>

#include "journal/Schema.h"
#include "tests/unit/journal/JournalCase.h"

namespace quordalvane {
namespace {

using testing::HasSubstr;

/// A journal of the first version: one job that was printed, one refused twice, one whose link was
/// lost, and one whose process was killed. The rows are copied from the file of that version.
constexpr auto firstVersion = R"(
PRAGMA application_id = 0x71756f72;
PRAGMA user_version = 1;
CREATE TABLE attempt (
  name TEXT NOT NULL,
  number INTEGER NOT NULL,
  bytes INTEGER NOT NULL,
  sha256 BLOB NOT NULL,
  device TEXT NOT NULL,
  begun INTEGER NOT NULL,
  ended INTEGER,
  outcome TEXT NOT NULL,
  accepted INTEGER NOT NULL,
  reason TEXT NOT NULL,
  PRIMARY KEY (name, number)
) STRICT, WITHOUT ROWID;
INSERT INTO attempt VALUES ('receipt 1', 1, 45,
  X'91c2c01fd899594a7ab0cb6c71464dd30584709b7dfb5367b0fb55b36bd10d68',
  'virtual:', 1795317153253, 1795317153563, 'printed', 45, '');
INSERT INTO attempt VALUES ('receipt 2', 2, 45,
  X'91c2c01fd899594a7ab0cb6c71464dd30584709b7dfb5367b0fb55b36bd10d68',
  'virtual:coverOpen=true', 1795317153717, 1795317153818, 'refused', 0, 'cover open');
INSERT INTO attempt VALUES ('receipt 3', 1, 45,
  X'91c2c01fd899594a7ab0cb6c71464dd30584709b7dfb5367b0fb55b36bd10d68',
  'virtual:cut-after-in=60', 1795317153848, 1795317153967, 'unconfirmed', 17,
  'link lost after 17 of 45 bytes');
INSERT INTO attempt VALUES ('receipt 4', 1, 45,
  X'91c2c01fd899594a7ab0cb6c71464dd30584709b7dfb5367b0fb55b36bd10d68',
  'virtual:speed=8', 1795317176835, NULL, '', 0, '');
CREATE TABLE seal (digest BLOB NOT NULL) STRICT;
INSERT INTO seal VALUES
  (X'94164241DDD8A8E3807A0F923CE9548D62C38ED2DBDC8E0497009C2812E5D087');
PRAGMA journal_mode = WAL;
)";

class JournalOfAnOlderVersion : public JournalCase {
 protected:
  JournalOfAnOlderVersion() { execute(firstVersion); }

  /// Changes the file by SQLite alone.
  void execute(const std::string& sql) const {
    sqlite3* database = nullptr;
    EXPECT_EQ(sqlite3_open(file.c_str(), &database), SQLITE_OK);
    EXPECT_EQ(sqlite3_exec(database, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
        << sqlite3_errmsg(database);
    sqlite3_close(database);
  }

  std::int64_t version() const { return Database(file).number("PRAGMA user_version"); }
};

TEST_F(JournalOfAnOlderVersion, IsConvertedWithAllItsRows) {
  const auto jobs = Journal(file).jobs();
  ASSERT_EQ(jobs.size(), 4U);
  EXPECT_EQ(jobs[0].state, JobState::Printed);
  EXPECT_EQ(jobs[1].state, JobState::Refused);
  EXPECT_EQ(jobs[1].attempts, 2);
  EXPECT_EQ(jobs[2].state, JobState::Unconfirmed);
  EXPECT_EQ(jobs[2].reason, "link lost after 17 of 45 bytes");
  EXPECT_EQ(jobs[2].begun, 1795317153848);
  EXPECT_EQ(jobs[2].ended, 1795317153967);
  EXPECT_THAT(jobs[3].reason, HasSubstr("ended too early"));
  EXPECT_EQ(version(), schemaVersion());
  EXPECT_EQ(Journal(file).jobs().size(), 4U) << "and opens again";
}

TEST_F(JournalOfAnOlderVersion, ReportsEarlierJobsAndAcceptsNewAttempts) {
  Till till(ZKEmulationQuorLine);
  const auto printed = print(till, "receipt 1");
  EXPECT_TRUE(printed.isRepeated);
  EXPECT_EQ(printed.result.proof, ProofKind::Auto) << "the first version did not keep it";
  const auto lost = print(till, "receipt 3");
  EXPECT_EQ(lost.result.outcome, PrintOutcome::Unconfirmed);
  EXPECT_EQ(lost.result.obstacle, PrintObstacle::NoProof);
  EXPECT_EQ(till.printed(), ByteBuffer());
  const auto refused = print(till, "receipt 2");
  EXPECT_EQ(refused.result.outcome, PrintOutcome::Printed);
  EXPECT_EQ(refused.attempt, 3);
  EXPECT_EQ(print(till, "receipt 4", true).attempt, 2);
  EXPECT_EQ(Journal(file).jobs().size(), 4U);
}

TEST_F(JournalOfAnOlderVersion, IsRefusedAndLeftUnchangedIfItIsDamaged) {
  execute("UPDATE attempt SET outcome = 'refused' WHERE name = 'receipt 1'");
  EXPECT_THAT(errorOf<JournalError>([this] { Journal journal(file); }), HasSubstr("damaged"));
  EXPECT_EQ(version(), 1);
}

}  // namespace
}  // namespace quordalvane
