#include "journal/Seal.h"

#include <cstring>
#include <string_view>

#include "job/ByteView.h"
#include "journal/JournalError.h"
#include "journal/Rows.h"
#include "journal/Sha256.h"

namespace quordalvane {
namespace {

ByteView bytesOf(std::string_view text) {
  return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

void add(Sha256& hash, std::string_view text) {
  hash.add(bytesOf(std::to_string(text.size()) + ":"));  // the length shows where each text ends
  hash.add(bytesOf(text));
}

Sha256::Digest digestOf(const Attempt& row) {
  Sha256 hash;
  for (const std::string& text :
       {row.name, std::to_string(row.number), std::to_string(row.data.bytes), row.data.sha256,
        row.device, std::to_string(row.begun), row.ended ? std::to_string(*row.ended) : "",
        row.outcome, std::to_string(row.bytesAccepted), row.reason}) {
    add(hash, text);
  }
  // Version 1 of the journal recorded no proof. The digests of its rows must not change.
  if (!row.proof.empty()) {
    add(hash, row.proof);
    add(hash, std::to_string(static_cast<int>(row.obstacle)));
  }
  if (row.told) {
    add(hash, "told " + std::to_string(*row.told));
  }
  return hash.digest();
}

std::string combined(std::string seal, const Attempt& row) {
  const auto digest = digestOf(row);
  seal.resize(digest.size(), '\0');
  for (std::size_t i = 0; i < digest.size(); ++i) {
    seal[i] = static_cast<char>(static_cast<unsigned char>(seal[i]) ^ digest[i]);
  }
  return seal;
}

std::string sealOf(Database& database) {
  Statement found = database.prepare("SELECT digest FROM seal");
  if (!found.step()) {
    throw JournalError(database.file(), "it is damaged: the digest of its rows is missing");
  }
  return found.text(0);
}

std::string soundnessOf(Database& database) {
  Statement found = database.prepare("PRAGMA integrity_check(1)");
  return found.step() ? found.text(0) : "no answer";
}

}  // namespace

void changeSeal(Database& database, const Attempt& row) {
  const std::string seal = combined(sealOf(database), row);
  database.prepare("UPDATE seal SET digest = ?").withBlob(seal).step();
}

void checkSeal(Database& database) {
  if (const std::string found = soundnessOf(database); found != "ok") {
    throw JournalError(database.file(), "it is damaged: " + found);
  }
  std::string seal(Sha256::Digest().size(), '\0');
  for (const Attempt& row : allRows(database)) {
    seal = combined(std::move(seal), row);
  }
  if (seal != sealOf(database)) {
    throw JournalError(database.file(), "it is damaged: its rows are not those that were written");
  }
}

}  // namespace quordalvane
