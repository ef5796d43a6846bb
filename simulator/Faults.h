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

/// The fate of bytes that were sent and not read when a link ends.
enum class Ending {
  Drain,   ///< they can still be read
  AtOnce,  ///< they are lost
  Reset,   ///< they are lost, and the host sees a reset instead of a close
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

/// One fault of a link. Which members count depends on the kind; see docs/virtual-printer.md.
struct Fault {
  FaultKind kind{};
  std::uint64_t count = 0;             ///< bytes; of `StrayByte` the byte
  Instant time{};                      ///< how late, how long, or when
  std::uint64_t reply = 0;             ///< the number of the reply that it befalls, from 1; 0: each
  std::optional<ReplyKind> replyKind;  ///< it befalls replies of this kind only; empty: of each
  std::vector<std::uint64_t> offsets;  ///< the places at which a reply is split, rising
  Ending ending = Ending::Drain;
  std::string key;  ///< of `at`: the printer setting or fault that it applies
  std::string value;
  std::string name;   ///< as it was given
  std::string given;  ///< the value, likewise
};

/// A part of the value of a fault, for those who ask people for it.
struct FaultPart {
  std::string_view before;  ///< the text that is between it and the part before
  std::string_view label;   ///< what it is, in a word or two
  enum class Kind { Number, Hex, Text, Ending, Reply, Proof } kind;
  bool isOptional = false;  ///< it may be left out, and `before` with it
};

/// A fault by its name, and the value that it takes. A value is its parts, one after the other;
/// `true` if there are none.
struct FaultForm {
  std::string_view name;
  std::string_view takes;  ///< in words
  std::string_view effect;
  std::span<const FaultPart> parts;
};

/// Every fault that there is.
std::vector<FaultForm> faultForms();

/// The values of a part that are words; empty for a number or a free text.
std::vector<std::string_view> choicesOf(FaultPart::Kind kind);

/// True if there is a fault of that name.
bool isFault(std::string_view name);

/// The fault `name` with the value `value`, as docs/virtual-printer.md describes them. Throws
/// std::invalid_argument, with a text for people that names the fault and the values it takes; it
/// is always printable.
Fault parseFault(std::string_view name, std::string_view value);

/// The faults of a link, in the order in which they were named. A plain value.
struct Faults {
  std::vector<Fault> list;
  std::optional<std::uint64_t> seed;  ///< decides the random choices of faults; empty: as 0

  /// Adds the fault that is named, or sets the seed for the name `seed`. Errors as in `parseFault`.
  void add(std::string_view name, std::string_view value);
};

}  // namespace quordalvane::simulator
