#include "journal/Database.h"

#include <sqlite3.h>

#include <system_error>
#include <utility>

#include "journal/JournalError.h"

namespace quordalvane {
namespace {

constexpr int longestWaitMillis = 10000;

std::string withSystemError(const std::string& text, sqlite3* handle) {
  const int error = handle == nullptr ? 0 : sqlite3_system_errno(handle);
  return error == 0 ? text : text + ": " + std::generic_category().message(error);
}

std::string reasonOf(int code, sqlite3* handle) {
  switch (code & 0xff) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      return "another program keeps it locked";
    case SQLITE_FULL:
      return "the disk is full";
    case SQLITE_READONLY:
      return "it is read-only";
    case SQLITE_CANTOPEN:
      return withSystemError("it cannot be opened", handle);
    case SQLITE_CORRUPT:
      return "it is damaged";
    case SQLITE_NOTADB:
      return "it is not a journal";
    case SQLITE_NOMEM:
      return "no memory is left";
    case SQLITE_IOERR:
      return withSystemError("it cannot be read or written", handle);
    default:
      return handle == nullptr ? sqlite3_errstr(code) : sqlite3_errmsg(handle);
  }
}

}  // namespace

void Statement::Reset::operator()(sqlite3_stmt* handle) const noexcept {
  sqlite3_reset(handle);
  sqlite3_clear_bindings(handle);
}

void Statement::check(int code) {
  if (code != SQLITE_OK) {
    database_.fail(code);
  }
}

Statement& Statement::with(std::int64_t value) {
  check(sqlite3_bind_int64(handle_.get(), ++bound_, value));
  return *this;
}

Statement& Statement::with(std::optional<std::int64_t> value) {
  if (value) {
    return with(*value);
  }
  check(sqlite3_bind_null(handle_.get(), ++bound_));
  return *this;
}

Statement& Statement::with(std::string_view text) {
  check(sqlite3_bind_text64(handle_.get(), ++bound_, text.data(), text.size(), SQLITE_TRANSIENT,
                            SQLITE_UTF8));
  return *this;
}

Statement& Statement::withBlob(std::string_view bytes) {
  check(sqlite3_bind_blob64(handle_.get(), ++bound_, bytes.data(), bytes.size(), SQLITE_TRANSIENT));
  return *this;
}

bool Statement::step() {
  const int code = sqlite3_step(handle_.get());
  if (code != SQLITE_ROW && code != SQLITE_DONE) {
    database_.fail(code);
  }
  return code == SQLITE_ROW;
}

std::int64_t Statement::number(int column) const {
  return sqlite3_column_int64(handle_.get(), column);
}

bool Statement::isNull(int column) const {
  return sqlite3_column_type(handle_.get(), column) == SQLITE_NULL;
}

std::string Statement::text(int column) const {
  const auto* const bytes = static_cast<const char*>(sqlite3_column_blob(handle_.get(), column));
  const int size = sqlite3_column_bytes(handle_.get(), column);
  return bytes == nullptr ? "" : std::string(bytes, static_cast<std::size_t>(size));
}

Database::Database(std::filesystem::path file)
    : file_(std::move(file)), handle_(nullptr, sqlite3_close) {
  sqlite3* opened = nullptr;
  const int code = sqlite3_open_v2(file_.c_str(), &opened,
                                   SQLITE_OPEN_READWRITE | SQLITE_OPEN_EXRESCODE, nullptr);
  handle_.reset(opened);
  if (code != SQLITE_OK) {
    fail(code);
  }
  if (sqlite3_db_readonly(opened, "main") == 1) {
    fail(SQLITE_READONLY);
  }
  sqlite3_busy_timeout(opened, longestWaitMillis);
}

Statement Database::prepare(const char* sql) {
  auto found = prepared_.find(sql);
  if (found == prepared_.end()) {
    sqlite3_stmt* made = nullptr;
    const int code =
        sqlite3_prepare_v3(handle_.get(), sql, -1, SQLITE_PREPARE_PERSISTENT, &made, nullptr);
    if (code != SQLITE_OK) {
      fail(code);
    }
    found = prepared_.emplace(sql, Prepared(made, sqlite3_finalize)).first;
  }
  return {*this, found->second.get()};
}

void Database::execute(const char* sql) {
  const int code = sqlite3_exec(handle_.get(), sql, nullptr, nullptr, nullptr);
  if (code != SQLITE_OK) {
    fail(code);
  }
}

std::int64_t Database::number(const char* sql) {
  Statement question = prepare(sql);
  return question.step() ? question.number(0) : 0;
}

void Database::rollBack() noexcept {
  // An error is ignored here: SQLite may have reverted the changes by itself already.
  sqlite3_exec(handle_.get(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void Database::fail(int code) const {
  throw JournalError(file_, reasonOf(code, handle_.get()));
}

Transaction::~Transaction() {
  if (isOpen_) {
    database_.rollBack();
  }
}

void Transaction::commit() {
  database_.execute("COMMIT");
  isOpen_ = false;
}

}  // namespace quordalvane
