// Measures how much longer a job takes if it has a name, because the journal then records it. The
// report's rows compare the journal with SQLite alone, which commits the same data.

#include <sqlite3.h>
#include <sys/syscall.h>

#include <cstdlib>
#include <filesystem>
#include <limits>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

#include "backends/virtual/VirtualAccessory.h"
#include "bench/Groups.h"
#include "bench/Measure.h"
#include "journal/NamedJob.h"
#include "simulator/PrinterBuilder.h"
#include "tests/counts/SystemCalls.h"
#include "tests/support/VirtualPlatform.h"

namespace quordalvane::bench {
namespace {

constexpr int jobs = 100;
const ByteBuffer receipt(450, 'x');

/// A temporary folder in the current folder. The current folder must be on a disk, because files in
/// memory are never synced.
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

/// A printer in this process, which prints without taking time.
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

using Database = std::unique_ptr<sqlite3, int (*)(sqlite3*)>;

void execute(const Database& database, const std::string& sql) {
  if (sqlite3_exec(database.get(), sql.c_str(), nullptr, nullptr, nullptr) != SQLITE_OK) {
    throw std::runtime_error(sqlite3_errmsg(database.get()));
  }
}

/// Commits the rows of named jobs directly through SQLite, without the journal.
class BareRows {
 public:
  explicit BareRows(const std::string& file) : database_(nullptr, sqlite3_close) {
    { const Journal made(file); }
    sqlite3* opened = nullptr;
    sqlite3_open(file.c_str(), &opened);
    database_.reset(opened);
    execute(database_, "PRAGMA synchronous = FULL");
  }

  /// Makes the same two commits as the journal, one at the beginning and one at the end of the job.
  /// The first adds the row of the job, and the second replaces this row. Each commit also changes
  /// the seal, the digest of all rows.
  void commit(int job) {
    execute(database_, "BEGIN IMMEDIATE;" + rowOf(job, "NULL, '', 0") + seal + "COMMIT");
    execute(database_, "BEGIN IMMEDIATE; DELETE FROM attempt WHERE name = '" + nameOf(job) + "';" +
                           seal + rowOf(job, "1700000001000, 'printed', 450") + seal + "COMMIT");
  }

  static std::string nameOf(int job) { return "receipt " + std::to_string(job); }

 private:
  static constexpr auto seal = "UPDATE seal SET digest = randomblob(32);";

  static std::string rowOf(int job, const std::string& ended) {
    return "INSERT INTO attempt (name, number, bytes, sha256, device, begun, ended, outcome, "
           "accepted, reason, proof, obstacle) VALUES ('" +
           nameOf(job) + "', 1, 450, zeroblob(32), 'virtual:', 1700000000000, " + ended +
           ", '', 'block', 0);";
  }

  Database database_;
};

struct Cost {
  double milliseconds;  // how much longer a job takes if it has a name
  double jobsASecond;
};

/// Records each job twice: through the journal, and directly through SQLite. The two are measured
/// alternately, job by job. A disk that other programs use can be slow for seconds, and this must
/// affect both measurements alike.
void measureOnce(Pairs<Cost>& pairs) {
  const Folder folder;
  const Folder bareFolder;
  Till till;
  Journal journal(folder.file());
  BareRows rows(bareFolder.file());
  Figures named;
  Figures bare;
  const auto plain = secondsOfEach(jobs, [&] { till.print(); });
  for (int job = 0; job < jobs; ++job) {
    const auto print = [&] { till.print(journal, BareRows::nameOf(job)); };
    if (job % 2 == 0) {
      named.push_back(secondsOf(print));
    }
    bare.push_back(secondsOf([&] { rows.commit(job); }));
    if (job % 2 != 0) {
      named.push_back(secondsOf(print));
    }
  }
  pairs.ours.push_back(
      {.milliseconds = (median(named) - median(plain)) * 1000, .jobsASecond = 1 / median(named)});
  pairs.limit.push_back({.milliseconds = median(bare) * 1000, .jobsASecond = 1 / median(bare)});
}

/// Returns the number of disk syncs for one job. `systemCallsOf` runs a lambda in a copy of this
/// process. `store` is declared outside this lambda, so that the destructor of the store, which
/// would sync once more, does not run in the copy.
template <typename Store, typename Commit>
double syncsOfAJob(Commit commit) {
  const auto syncsOf = [&](int count) {
    const Folder folder;
    std::optional<Store> store;
    const auto calls = systemCallsOf([&] {
      store.emplace(folder.file());
      for (int job = 0; job < count; ++job) {
        commit(*store, job);
      }
    });
    return calls ? static_cast<double>(countOf(*calls, SYS_fsync) + countOf(*calls, SYS_fdatasync))
                 : std::numeric_limits<double>::quiet_NaN();
  };
  return (syncsOf(jobs) - syncsOf(0)) / jobs;
}

Row syncs() {
  Till till;
  Row row{.heading = {"B19", "syncs of the disk for a job under a name", "1 x", "calls"}};
  row.ours = syncsOfAJob<Journal>(
      [&](Journal& journal, int job) { till.print(journal, BareRows::nameOf(job)); });
  row.limit = syncsOfAJob<BareRows>([](BareRows& rows, int job) { rows.commit(job); });
  return row;
}

}  // namespace

Rows journal() {
  Pairs<Cost> costs;
  for (int pair = 0; pair < pairCount; ++pair) {
    measureOnce(costs);
  }
  return {comparedRow({"B19", "the journal's share of a job under a name", "<= 1.2 x", "ms"},
                      figuresOf(costs, &Cost::milliseconds), Best::Lowest),
          comparedRow({"B19", "jobs under a name, one after the other", ">= 0.8 x", "jobs/s"},
                      figuresOf(costs, &Cost::jobsASecond), Best::Highest),
          syncs()};
}

}  // namespace quordalvane::bench
