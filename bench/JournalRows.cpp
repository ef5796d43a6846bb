// The cost of a job's name: the journal's share, beside the same rows committed by SQLite alone.

#include <sqlite3.h>

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

#include "backends/virtual/VirtualAccessory.h"
#include "bench/Groups.h"
#include "bench/Measure.h"
#include "journal/NamedJob.h"
#include "simulator/PrinterBuilder.h"
#include "tests/support/VirtualPlatform.h"

namespace quordalvane::bench {
namespace {

constexpr int jobs = 40;
const ByteBuffer receipt(450, 'x');

/// A folder on the disk of the current one: files in memory are never synced.
class Folder {
 public:
  Folder() : path_((std::filesystem::current_path() / "bench-journal-XXXXXX").string()) {
    if (::mkdtemp(path_.data()) == nullptr) {
      throw std::runtime_error("no folder can be made for the journal");
    }
  }
  ~Folder() { std::filesystem::remove_all(path_); }
  Folder(const Folder&) = delete;
  Folder& operator=(const Folder&) = delete;

  std::string file() const { return path_ + "/jobs.db"; }

 private:
  std::string path_;
};

/// A printer in this process, which prints in no time.
class Till {
 public:
  Till() : platform_(std::make_shared<test::VirtualPlatform>()) {
    platform_->attach(std::make_shared<virtuals::VirtualAccessory>(
        AccessoryIdentity{},
        std::make_unique<simulator::VirtualPrinter>(simulator::PrinterBuilder().state()),
        platform_->clock()));
    port_ =
        ExternalAccessoryPort::initWithPortName("BT:", "", 10000, ZKEmulationQuorLine, platform_);
    port_->open();
  }
  ~Till() { port_->close(); }
  Till(const Till&) = delete;
  Till& operator=(const Till&) = delete;

  void print() { check(PrintJob(port_).run(receipt)); }

  void print(Journal& journal, const std::string& name) {
    NamedJob named(journal, {.name = name, .device = "virtual:"}, receipt);
    PrintJob job(port_, named.recorded());
    check(named.run(job).result);
  }

 private:
  static void check(const PrintResult& result) {
    if (result.outcome != PrintOutcome::Printed) {
      throw std::runtime_error("a job was not printed: " + result.reason);
    }
  }

  std::shared_ptr<test::VirtualPlatform> platform_;
  std::shared_ptr<ExternalAccessoryPort> port_;
};

/// Milliseconds that a name adds to a job.
double journalShare() {
  const Folder folder;
  Till till;
  Journal journal(folder.file());
  const double plain = median(secondsOfEach(jobs, [&] { till.print(); }));
  int job = 0;
  const double named =
      median(secondsOfEach(jobs, [&] { till.print(journal, "receipt " + std::to_string(job++)); }));
  return (named - plain) * 1000;
}

using Database = std::unique_ptr<sqlite3, int (*)(sqlite3*)>;

void execute(const Database& database, const std::string& sql) {
  if (sqlite3_exec(database.get(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
    throw std::runtime_error(sqlite3_errmsg(database.get()));
  }
}

std::string rowOf(int job, const std::string& ended) {
  return "INSERT INTO attempt VALUES ('receipt " + std::to_string(job) +
         "', 1, 450, zeroblob(32), 'virtual:', 1700000000000, " + ended + ", '', 'block', 0);";
}

/// The same two commits for each job: the row that begins it with its seal, then both replaced.
double bareCommits() {
  const Folder folder;
  { const Journal made(folder.file()); }
  sqlite3* opened = nullptr;
  sqlite3_open(folder.file().c_str(), &opened);
  const Database database(opened, sqlite3_close);
  execute(database, "PRAGMA synchronous = FULL");
  const std::string seal = "UPDATE seal SET digest = randomblob(32);";
  int job = 0;
  return 1000 * median(secondsOfEach(jobs, [&] {
           execute(database, "BEGIN IMMEDIATE;" + rowOf(job, "NULL, '', 0") + seal + "COMMIT");
           execute(database, "BEGIN IMMEDIATE; DELETE FROM attempt WHERE name = 'receipt " +
                                 std::to_string(job) + "';" + seal +
                                 rowOf(job, "1700000001000, 'printed', 450") + seal + "COMMIT");
           ++job;
         }));
}

}  // namespace

Rows journal() {
  return {comparedRow({"B19", "the journal's share of a job under a name", "<= 1.2 x", "ms"},
                      alternate(journalShare, bareCommits), Best::Lowest)};
}

}  // namespace quordalvane::bench
