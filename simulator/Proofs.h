#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace quordalvane::simulator {

/// A way in which a printer confirms that it has printed everything sent before.
enum class Proof : std::uint8_t {
  Block,      ///< the checked block: the printer counts ETB bytes (17 hex), and reports each
  ProcessId,  ///< the printer sends back four characters that the host chose
  InOrder,    ///< the printer answers a status request after it has printed all earlier data
};

/// The ways in which a printer can prove that a job was printed. A plain value.
class Proofs {
 public:
  /// Reads the names `block`, `process-id` and `in-order`, joined by `+`. An empty text or `none`
  /// means no proof. Throws std::invalid_argument, with a message for people, if the text has
  /// another form.
  static Proofs parse(std::string_view text);

  static Proofs all();

  bool has(Proof proof) const { return (bits_ & bit(proof)) != 0; }

  /// Returns the text that `parse` reads.
  std::string text() const;

  bool operator==(const Proofs&) const = default;

 private:
  static unsigned bit(Proof proof) { return 1U << static_cast<unsigned>(proof); }
  void add(std::string_view name, std::string_view text);

  unsigned bits_ = 0;
};

}  // namespace quordalvane::simulator
