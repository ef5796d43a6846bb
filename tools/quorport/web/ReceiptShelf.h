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

/// Holds the latest receipts for browsers. Forgets the oldest ones, so that it never exceeds its
/// limits.
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

  /// Adds the receipts of a job that ended at `time`, in milliseconds since 1970. Returns their
  /// count.
  std::size_t add(ReceiptWriter::Done job, const Origin& origin, std::int64_t time);

  /// A short list of the latest receipts before number `before`, the newest first.
  Json list(std::optional<std::uint64_t> before = std::nullopt) const;

  /// All facts about a receipt, with its commands from number `from` on; null if there is no such
  /// receipt.
  Json describe(std::uint64_t id, std::uint64_t from) const;

  /// The receipt as a file: `kind` is `png`, `txt` or `bin`. Null if there is no such receipt.
  http::Text file(std::uint64_t id, const std::string& kind) const;

  /// The rows of its picture from that one on, `DrawnReceipt::pieceRows` at most: a PNG file. Null
  /// if there is no such receipt, or no piece begins there.
  http::Text piece(std::uint64_t id, std::uint64_t row) const;

  /// The approximate size of all receipts, in bytes.
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
    http::Text record;  // the record of its job, as one line of JSON
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
