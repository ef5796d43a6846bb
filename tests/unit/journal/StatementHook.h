#pragma once

#include <sqlite3.h>

#include <functional>
#include <string>
#include <utility>

namespace quordalvane {

/// Calls a function at an exact moment: before or after a database connection runs an SQL statement
/// that contains `text`. The connection must be opened while this object exists.
class StatementHook {
 public:
  enum class Moment : unsigned { Begin = SQLITE_TRACE_STMT, End = SQLITE_TRACE_PROFILE };

  StatementHook(Moment moment, std::string text) {
    wanted() = {moment, std::move(text)};
    sqlite3_auto_extension(extension());
  }
  ~StatementHook() {
    sqlite3_cancel_auto_extension(extension());
    wanted() = {};
  }
  StatementHook(const StatementHook&) = delete;
  StatementHook& operator=(const StatementHook&) = delete;

  /// Calls `action` once: before or after the next statement that contains the text given to the
  /// constructor. The thread that runs the statement calls it.
  void callOnce(std::function<void()> action) { wanted().action = std::move(action); }

  bool hasCalled() const { return !wanted().action; }

 private:
  struct Wanted {
    Moment moment = Moment::Begin;
    std::string text = {};
    std::function<void()> action = {};
  };

  static Wanted& wanted() {
    static Wanted wanted;
    return wanted;
  }

  static int trace(unsigned /*moment*/, void* /*context*/, void* statement, void* /*more*/) {
    const std::string sql = sqlite3_sql(static_cast<sqlite3_stmt*>(statement));
    if (wanted().action && sql.find(wanted().text) != std::string::npos) {
      std::exchange(wanted().action, nullptr)();
    }
    return 0;
  }

  static int watch(sqlite3* opened, char** /*error*/, const sqlite3_api_routines* /*routines*/) {
    return sqlite3_trace_v2(opened, static_cast<unsigned>(wanted().moment), trace, nullptr);
  }

  static void (*extension())() { return reinterpret_cast<void (*)()>(watch); }
};

}  // namespace quordalvane
