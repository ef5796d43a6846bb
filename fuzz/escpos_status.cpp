#include "fuzz/FuzzTarget.h"
#include "fuzz/StatusRecord.h"
#include "parsers/StatusParsers.h"

using namespace quordalvane;
using fuzz::require;

/// The first four bytes are the query. The other bytes are the record, which contains the reply. An
/// invalid reply must leave the record unchanged. A valid reply must set flags only to 0 or 1. The
/// reply itself must not change.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::uint32_t query = 0;
  if (size < sizeof query) {
    return 0;
  }
  std::memcpy(&query, data, sizeof query);
  const QuorPrinterStatus_2 before = fuzz::recordFrom(data + sizeof query, size - sizeof query);
  QuorPrinterStatus_2 record = before;
  const bool applied = BuildParsedStatusESCPOS(&record, static_cast<StatusType>(query)) != 0;
  require(applied == (query < 3 && (before.raw[0] & 0x93) == 0x12));
  if (!applied) {
    require(fuzz::same(record, before));
  }
  for (std::size_t k = 0; k < fuzz::flagCount; ++k) {
    require(fuzz::flag(record, k) == fuzz::flag(before, k) || fuzz::flag(record, k) <= 1);
  }
  require(record.rawLength == before.rawLength);
  require(std::equal(std::begin(record.raw), std::end(record.raw), std::begin(before.raw)));
  return 0;
}
