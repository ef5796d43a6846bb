#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <vector>

#include "simulator/Dialect.h"
#include "simulator/JobRecord.h"
#include "tools/http/EventLog.h"
#include "tools/quorport/Json.h"
#include "tools/quorport/simulate/DrawnReceipt.h"
#include "tools/quorport/simulate/ReceiptWriter.h"

namespace quordalvane::tool {

/// Holds the latest receipts for browsers. It forgets the oldest receipts, so that it never exceeds
/// its limits.
class ReceiptShelf {
 public:
  static constexpr std::size_t mostReceipts = 200;
  static constexpr std::size_t mostBytes = std::size_t{64} << 20U;
  static constexpr std::size_t mostListed = 50;      ///< the most receipts in one list
  static constexpr std::size_t mostCommands = 2000;  ///< the most commands in one answer

  /// The printer that printed a job.
  struct Origin {
    unsigned printer = 0;  ///< the printer's number, from 1
    simulator::Dialect dialect;
  };

  /// Adds the receipts of a job that ended at `time`, in milliseconds since 1970. Returns the count
  /// of these receipts.
  std::size_t add(ReceiptWriter::Done job, const Origin& origin, std::int64_t time);

  /// Returns a short list of the latest receipts before number `before`, the newest first.
  Json list(std::optional<std::uint64_t> before = std::nullopt) const;

  /// Returns all facts about a receipt, with its commands from number `from` on; null if there is
  /// no such receipt.
  Json describe(std::uint64_t id, std::uint64_t from) const;

  /// Returns the receipt as a file: `kind` is `png`, `txt` or `bin`. Returns null if there is no
  /// such receipt.
  http::Text file(std::uint64_t id, const std::string& kind) const;

  /// Returns a PNG file with a piece of the receipt's picture: the rows from number `row`, at most
  /// `DrawnReceipt::pieceRows` rows. Returns null if there is no such receipt, or if no piece
  /// begins at this row.
  http::Text piece(std::uint64_t id, std::uint64_t row) const;

  /// Returns the approximate size of all receipts, in bytes.
  std::size_t bytes() const { return bytes_; }

 private:
  struct Receipt {
    std::uint64_t id;
    Origin origin;
    std::int64_t time;
    JobReport report;
    std::uint64_t byteCount;
    unsigned cuts;
    unsigned width;
    unsigned height;
    http::Text record;  // the record of the receipt's job, as one line of JSON
    http::Text text;
    http::Text received;
    http::Text picture;              // the PNG file; null if there is no paper
    std::vector<http::Text> pieces;  // the PNG files of a tall picture

    std::size_t weight() const;
  };

  const Receipt* find(std::uint64_t id) const;
  static Json summary(const Receipt& receipt);

  std::deque<Receipt> receipts_;
  std::size_t bytes_ = 0;
  std::uint64_t latest_ = 0;
};

}  // namespace quordalvane::tool
