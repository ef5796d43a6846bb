#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/Instant.h"
#include "simulator/ReplyKind.h"

namespace quordalvane::simulator {

/// How a link ends. Unread bytes are bytes that the printer has sent and the host has not read.
enum class Ending {
  Drain,   ///< the host can still read the unread bytes
  AtOnce,  ///< the unread bytes are lost
  Reset,   ///< the unread bytes are lost, and the host sees a reset
};

enum class FaultKind {
  ShortWrites,
  NoSpace,
  LateReply,
  SplitReply,
  DuplicateReply,
  DropReply,
  CorruptReply,
  StrayByte,
  WrongId,
  ForeignReply,
  Silence,
  CutAfterIn,
  CutAfterOut,
  Cut,
  PrintsNothing,
  At,
};

/// A fault of a link. The kind decides which members are used; see docs/virtual-printer.md.
struct Fault {
  FaultKind kind{};
  std::uint64_t count = 0;             ///< a count of bytes; for `StrayByte`, the byte itself
  Instant time{};                      ///< a delay, a duration or a time
  std::uint64_t reply = 0;             ///< the number of the affected reply, from 1; 0: all replies
  std::optional<ReplyKind> replyKind;  ///< the kind of the affected replies; empty: all replies
  std::vector<std::uint64_t> offsets;  ///< the positions at which a reply is split, ascending
  Ending ending = Ending::Drain;
  std::string key;  ///< only for `At`: the setting or fault to apply
  std::string value;
  std::string name;   ///< the fault's name, as the user wrote it
  std::string given;  ///< the fault's value, as the user wrote it
};

/// The form of one part of a fault's value, for programs that ask the user for the value.
struct FaultPart {
  std::string_view before;  ///< the separator before the part, such as ":"; may be empty
  std::string_view label;   ///< a short label of the part for people, such as "bytes"
  enum class Kind { Number, Hex, Text, Ending, Reply, Proof } kind;
  bool isOptional = false;  ///< true if the part may be omitted, together with its separator
};

/// The name of a fault and the form of its value. The value consists of the `parts`, one after
/// another. If `parts` is empty, the value is `true`.
struct FaultForm {
  std::string_view name;
  std::string_view takes;  ///< the form of the value, in words
  std::string_view effect;
  std::span<const FaultPart> parts;
};

/// Returns one `FaultForm` for each fault, and one for the setting `seed`.
std::vector<FaultForm> faultForms();

/// Returns the words that a part of this kind accepts; empty for a number or any text.
std::vector<std::string_view> choicesOf(FaultPart::Kind kind);

/// Returns true if there is a fault of this name.
bool isFault(std::string_view name);

/// Reads the fault `name` with the value `value`, as docs/virtual-printer.md describes them. Throws
/// std::invalid_argument, with a text for people that names the fault and the values that the fault
/// accepts. The text is always printable.
Fault parseFault(std::string_view name, std::string_view value);

/// The faults of a link, in the order in which they were added. A plain value.
struct Faults {
  std::vector<Fault> list;
  std::optional<std::uint64_t> seed;  ///< the seed of the faults' random choices; empty means 0

  /// Adds a fault, or sets the seed if `name` is `seed`. Throws as `parseFault` does.
  void add(std::string_view name, std::string_view value);
};

}  // namespace quordalvane::simulator
