#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quordalvane::simulator {

/// A way in which a printer confirms that it has printed all that was sent before.
enum class Proof : std::uint8_t {
  Block,      ///< the checked block: a counter of ETBs, and a report of each
  ProcessId,  ///< four characters that the host chose are sent back
  InOrder,    ///< a status request that waits for its turn among the print data
};

/// The proofs that a printer can give. A plain value.
class Proofs {
 public:
  /// Reads the names `block`, `process-id` and `in-order`, joined by `+`; an empty text or `none`
  /// is the empty set. Throws std::invalid_argument, with a text for people, for any other text.
  static Proofs parse(std::string_view text);

  static Proofs all();

  bool has(Proof proof) const { return (bits_ & bit(proof)) != 0; }

  /// As `parse` takes it.
  std::string text() const;

  bool operator==(const Proofs&) const = default;

 private:
  static unsigned bit(Proof proof) { return 1U << static_cast<unsigned>(proof); }
  void add(std::string_view name, std::string_view text);

  unsigned bits_ = 0;
};

}  // namespace quordalvane::simulator
