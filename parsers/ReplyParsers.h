#pragma once

#include <cstdint>

// Functions that find the answer to a query in the bytes that a printer sent in line mode. The
// functions are pure, and any thread may call them. They read `bytes[0]` to `bytes[count - 1]`; if
// `count` is 0 or less, there are no bytes, and `bytes` may be null. `location` (an offset into
// `bytes`) and `length` (in bytes) must not be null. `location` and `length` are written only on
// success.

namespace quordalvane {

/// Finds the first complete firmware text: 1 to 64 printable ASCII characters between the bytes 1b
/// 23 2a and the bytes 0a 00. Skips all bytes before this reply, including damaged or incomplete
/// replies. Returns 0 and the position of the text, or a value other than 0 if these bytes contain
/// no complete text.
std::int32_t parseFirmwareInfo(const std::uint8_t* bytes, std::int32_t count,
                               std::int32_t* location, std::int32_t* length);

/// Finds the settings of a DIP-switch bank: the bytes between the first head (the bytes 1b 23 2c 31
/// or 1b 23 2c 32) and the last byte 0a. The last 0a is used because a setting byte may itself be
/// 0a. Returns 0 and the position of the settings, which are two bytes or more. Returns a value
/// other than 0 if there are fewer than two bytes. A length above 2 means that other bytes were
/// mixed into the reply.
std::int32_t parseDipSwitchInfo(const std::uint8_t* bytes, std::int32_t count,
                                std::int32_t* location, std::int32_t* length);

}  // namespace quordalvane
