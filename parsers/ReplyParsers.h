#pragma once

#include <cstdint>

// Find the answer to a question in the bytes that a printer sent in line mode. The functions are
// pure and may be called on any thread. They look at `bytes[0]` to `bytes[count - 1]` and keep
// nothing; a `count` of 0 or less means no bytes, and `bytes` may then be null. `location` (an
// offset into `bytes`) and `length` (in bytes) are the caller's, must not be null, and are written
// on success only.

namespace quordalvane {

/// Finds the first complete firmware text: 1 to 64 printable ASCII characters between 1b 23 2a and
/// 0a 00. Bytes before it are skipped, damaged or cut-off replies among them. Returns 0 with the
/// place of the text, or non-zero if there is no complete one in these bytes.
std::int32_t parseFirmwareInfo(const std::uint8_t* bytes, std::int32_t count,
                               std::int32_t* location, std::int32_t* length);

/// Finds the settings of a DIP switch bank: the bytes between the first 1b 23 2c 31 or 1b 23 2c 32
/// and the last 0a of all the bytes. The last one, because a setting byte may be 0a itself. Returns
/// 0 with the place of the settings, two bytes or more, or non-zero if there are not that many yet.
/// A length other than 2 says that the reply was mixed with other bytes.
std::int32_t parseDipSwitchInfo(const std::uint8_t* bytes, std::int32_t count,
                                std::int32_t* location, std::int32_t* length);

}  // namespace quordalvane
