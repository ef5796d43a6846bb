#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace quordalvane {

/// A prepared SQL statement. The database keeps the prepared form, and uses it again for the next
/// statement with the same text. Each call of `with` binds the next parameter.
class Statement {
 public:
  Statement& with(std::int64_t value);
  Statement& with(std::optional<std::int64_t> value);
  Statement& with(std::string_view text);
  Statement& withBlob(std::string_view bytes);

  /// Moves to the next row. Returns false after the last row. Throws `JournalError` if the database
  /// fails.
  bool step();

  std::int64_t number(int column) const;
  bool isNull(int column) const;
  std::string text(int column) const;  ///< all bytes of a text or a blob

 private:
  friend class Database;
  Statement(class Database& database, sqlite3_stmt* handle)
      : database_(database), handle_(handle) {}
  void check(int code);

  /// Makes a statement ready for its next use.
  struct Reset {
    void operator()(sqlite3_stmt* handle) const noexcept;
  };

  class Database& database_;
  std::unique_ptr<sqlite3_stmt, Reset> handle_;
  int bound_ = 0;
};

/// One connection to an SQLite file. The file must be on this machine and writable. Every failure
/// throws a `JournalError` that names the file and the reason.
class Database {
 public:
  explicit Database(std::filesystem::path file);

  void execute(const char* sql);

  /// Returns a statement with the text `sql`. The text must outlive the database. At most one
  /// statement with the same text may exist at a time. Each text is prepared only once, because
  /// preparing a statement costs more than executing it.
  Statement prepare(const char* sql);

  /// Executes `sql` and returns its result, which must be a number.
  std::int64_t number(const char* sql);

  /// Ends the open transaction and reverts its changes.
  void rollBack() noexcept;

  const std::filesystem::path& file() const { return file_; }
  [[noreturn]] void fail(int code) const;

 private:
  friend class Statement;
  using Prepared = std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)>;

  const std::filesystem::path file_;
  std::unique_ptr<sqlite3, int (*)(sqlite3*)> handle_;
  std::map<std::string_view, Prepared> prepared_;  // destroyed before the connection
};

/// While a Snapshot exists, every read sees the database as it was at one moment, even if other
/// processes write to it.
class Snapshot {
 public:
  explicit Snapshot(Database& database) : database_(database) { database_.execute("BEGIN"); }
  ~Snapshot() { database_.rollBack(); }
  Snapshot(const Snapshot&) = delete;
  Snapshot& operator=(const Snapshot&) = delete;

 private:
  Database& database_;
};

/// Groups the changes between its creation and `commit`. If `commit` has not returned, the
/// destructor reverts all of them.
class Transaction {
 public:
  /// Begins the transaction. Waits for other writers, at most ten seconds.
  explicit Transaction(Database& database) : database_(database) {
    database_.execute("BEGIN IMMEDIATE");
  }
  ~Transaction();
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;

  /// Makes the changes permanent. When `commit` returns, the changes are on disk.
  void commit();

 private:
  Database& database_;
  bool isOpen_ = true;
};

}  // namespace quordalvane
