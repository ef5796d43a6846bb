#pragma once

#include <optional>
#include <string_view>

namespace quordalvane::simulator {

/// The question that a printer answers with a reply, as far as faults distinguish replies.
enum class ReplyKind {
  Other,
  Block,      ///< the report of an ETB
  ProcessId,  ///< a process ID that is returned
  InOrder,    ///< a status in its turn among the print data
  Unasked,    ///< the four bytes that report a change
  Cleared,    ///< the buffer was cleared
};

/// The kind of that name: `block`, `process-id`, `in-order`, `unasked`, `cleared`; empty for any
/// other.
std::optional<ReplyKind> replyKindNamed(std::string_view name);

}  // namespace quordalvane::simulator
