#include "journal/Rows.h"

#include "journal/Seal.h"

namespace quordalvane {
namespace {

constexpr auto everyRow =
    "SELECT name, number, bytes, sha256, device, begun, ended, outcome, accepted, reason, proof, "
    "obstacle, told FROM attempt ORDER BY name, number";

constexpr auto rowsOfOneName =
    "SELECT name, number, bytes, sha256, device, begun, ended, outcome, accepted, reason, proof, "
    "obstacle, told FROM attempt WHERE name = ? ORDER BY number";

Attempt rowAt(const Statement& found) {
  Attempt row;
  row.name = found.text(0);
  row.number = found.number(1);
  row.data = {static_cast<std::uint64_t>(found.number(2)), found.text(3)};
  row.device = found.text(4);
  row.begun = found.number(5);
  if (!found.isNull(6)) {
    row.ended = found.number(6);
  }
  row.outcome = found.text(7);
  row.bytesAccepted = static_cast<std::uint64_t>(found.number(8));
  row.reason = found.text(9);
  row.proof = found.text(10);
  row.obstacle = static_cast<PrintObstacle>(found.number(11));
  if (!found.isNull(12)) {
    row.told = found.number(12);
  }
  return row;
}

std::vector<Attempt> rowsFound(Statement found) {
  std::vector<Attempt> rows;
  while (found.step()) {
    rows.push_back(rowAt(found));
  }
  return rows;
}

}  // namespace

std::vector<Attempt> rowsOf(Database& database, std::string_view name) {
  Statement question = database.prepare(rowsOfOneName);
  question.with(name);
  return rowsFound(std::move(question));
}

std::vector<Attempt> allRows(Database& database) {
  return rowsFound(database.prepare(everyRow));
}

void insertRow(Database& database, const Attempt& row) {
  database
      .prepare(
          "INSERT INTO attempt (name, number, bytes, sha256, device, begun, ended, outcome, "
          "accepted, reason, proof, obstacle, told) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?)")
      .with(row.name)
      .with(row.number)
      .with(static_cast<std::int64_t>(row.data.bytes))
      .withBlob(row.data.sha256)
      .with(row.device)
      .with(row.begun)
      .with(row.ended)
      .with(row.outcome)
      .with(static_cast<std::int64_t>(row.bytesAccepted))
      .with(row.reason)
      .with(row.proof)
      .with(static_cast<std::int64_t>(row.obstacle))
      .with(row.told)
      .step();
  changeSeal(database, row);
}

void deleteRow(Database& database, const Attempt& row) {
  database.prepare("DELETE FROM attempt WHERE name = ? AND number = ?")
      .with(row.name)
      .with(row.number)
      .step();
  changeSeal(database, row);
}

}  // namespace quordalvane
