#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "iphone-IOPort/enum.h"
#include "job/ByteView.h"

namespace quordalvane {

/// Returns a text for people that says why a checked block (`ProofKind::Block`) cannot confirm the
/// printing of `data`. The text names the command that prevents the confirmation, and its position.
/// There are two cases: a command in the data causes answers that look like the printer's
/// confirmation in this emulation, or the data ends inside a command. Returns null if a checked
/// block can confirm the printing.
///
/// Some commands contain the length of their payload, for example those for images, barcodes and
/// stored graphics. Such a payload is not searched, as long as all commands before it are known.
/// The parameters of other commands are searched as if they were commands, because a printer may
/// take them for commands.
std::optional<std::string> confirmationObstacle(ByteView data, ZKEmulation emulation);

/// Returns true if the printer certainly does not answer anything in `data`: all commands in it are
/// known, and no command asks for an answer. Returns false for data of more than a mebibyte,
/// because the search would cost more time than it saves.
bool isNeverAnswered(ByteView data);

/// Returns the end of the command that contains `position`. The printer reads all bytes up to this
/// end as a part of the command. Returns `position` itself if `position` is not inside a command,
/// or if an unknown command precedes `position`. If the data ends inside the command, returns the
/// end of the data.
std::size_t commandEnd(ByteView data, std::size_t position);

/// Returns a text for people that says why a query after `data` would prove nothing. There are two
/// cases. The data ends inside a command: the printer would read the query as a part of this
/// command. Or a command in the data makes a printer drop data. Returns null if a query after
/// `data` can prove the printing. If a command contains the length of its payload, this payload is
/// searched only for the command 10 14 08 (hex). A printer obeys that command on arrival, even
/// inside a payload, and clears its buffer.
std::optional<std::string> endSignObstacle(ByteView data);

/// Returns how many in-order statuses (see inOrderRequest) the data itself requests; null if they
/// cannot be counted.
std::optional<std::uint64_t> inOrderRequestsIn(ByteView data);

}  // namespace quordalvane
