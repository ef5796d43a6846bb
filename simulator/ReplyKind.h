#pragma once

#include <optional>
#include <string_view>

namespace quordalvane::simulator {

/// The kind of question that a reply answers, as far as faults distinguish them.
enum class ReplyKind {
  Other,
  Block,      ///< the report of an ETB
  ProcessId,  ///< a process ID that is sent back
  InOrder,    ///< a status that waited for its turn among the print data
  Unasked,    ///< four bytes that report a change without a question
  Cleared,    ///< the buffer was cleared
};

/// The kind of this name: `block`, `process-id`, `in-order`, `unasked` or `cleared`; empty for any
/// other name.
std::optional<ReplyKind> replyKindNamed(std::string_view name);

}  // namespace quordalvane::simulator
