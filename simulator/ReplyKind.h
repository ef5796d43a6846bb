#pragma once

#include <optional>
#include <string_view>

namespace quordalvane::simulator {

/// The kinds of replies. A fault can be limited to replies of one kind.
enum class ReplyKind {
  Other,
  Block,      ///< the report of an ETB in a checked block
  ProcessId,  ///< the process ID that the printer sends back
  InOrder,    ///< the status that a request in the print data asked for
  Unasked,    ///< four bytes that report a change and answer no request
  Cleared,    ///< the report that the buffer was cleared
};

/// Returns the kind of this name: `block`, `process-id`, `in-order`, `unasked` or `cleared`; empty
/// for any other name.
std::optional<ReplyKind> replyKindNamed(std::string_view name);

}  // namespace quordalvane::simulator
