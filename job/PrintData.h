#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "iphone-IOPort/enum.h"
#include "job/ByteView.h"

namespace quordalvane {

/// Why print data cannot be confirmed although every byte of it may be printed: a command in it
/// makes the very signs by which a printer of that emulation confirms a job, or the data ends
/// inside a command. In words, with the place; empty if the signs can only be the block's own.
///
/// Bytes inside the counted payload of a print command (an image, a barcode, a stored graphic) are
/// data whatever their values, as long as all commands before it are known. The parameters of a
/// command are not distinguished from commands, since a printer need not distinguish them either.
std::optional<std::string> confirmationObstacle(ByteView data, ZKEmulation emulation);

/// Whether the printer answers nothing in `data`: it holds known commands alone, and no command
/// that asks for an answer. False if that is not certain, and for more than a mebibyte, of which
/// the search would cost more than it saves.
bool isNeverAnswered(ByteView data);

/// The end of the print command that contains `position`; `position` itself outside of a command or
/// after one that is not known, and the end of the data if the command does not end in it. A
/// printer takes all bytes before that place for the command's own.
std::size_t commandEnd(ByteView data, std::size_t position);

/// Why a question after the data could be taken for data, or why its answer would prove
/// nothing: the data ends inside a command, or holds a command that makes a printer drop data.
/// Empty if neither. Counted payload of known commands is data here as well, but for the command
/// that clears the buffer in real time.
std::optional<std::string> endSignObstacle(ByteView data);

/// How many in-order answers the data itself asks for; empty if that cannot be counted.
std::optional<std::uint64_t> inOrderRequestsIn(ByteView data);

}  // namespace quordalvane
