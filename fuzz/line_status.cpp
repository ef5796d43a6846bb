#include "fuzz/FuzzTarget.h"
#include "fuzz/StatusRecord.h"
#include "parsers/StatusParsers.h"

using namespace quordalvane;
using fuzz::require;

/// The input is a status record with any content. The record contains a reply and its length, which
/// may be wrong. The parser must derive every other field from the reply, and must not change the
/// reply.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const QuorPrinterStatus_2 before = fuzz::recordFrom(data, size);
  QuorPrinterStatus_2 record = before;
  BuildParsedStatus(&record);
  require(record.rawLength == before.rawLength);
  require(std::equal(std::begin(record.raw), std::end(record.raw), std::begin(before.raw)));

  const auto carried = [&](std::size_t index) -> std::uint8_t {
    return index < record.rawLength ? record.raw[index] : 0;
  };
  for (std::size_t k = 0; k < fuzz::flagCount; ++k) {
    require(fuzz::flag(record, k) == ((carried(2 + k / 8) & (1 << (k % 8))) != 0 ? 1U : 0U));
  }
  require(record.etbCounter == carried(6));
  require(record.presenterState == carried(7));
  require(record.connectedInterface == carried(8));
  return 0;
}
