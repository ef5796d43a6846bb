#pragma once

#include <cstdint>
#include <span>

namespace quordalvane::bench {

/// One side of a connection by bare system calls: the limit that a library can reach.
class BareLink {
 public:
  /// Takes over a connected descriptor and makes it non-blocking.
  explicit BareLink(int descriptor);
  ~BareLink();
  BareLink(const BareLink&) = delete;
  BareLink& operator=(const BareLink&) = delete;

  /// Write, poll, read: until `reply` has been filled.
  void exchange(std::span<const std::uint8_t> request, std::span<std::uint8_t> reply);

  /// Writes as much at once as the system takes, and polls if it takes nothing.
  void write(std::span<const std::uint8_t> bytes);

  /// Waits for bytes as long as that; true if there are any.
  bool poll(int milliseconds) const;

  /// The count that was read; 0 if there is nothing.
  std::size_t read(std::span<std::uint8_t> bytes);

 private:
  const int descriptor_;
};

/// The exchanges of one ESC/POS status.
void exchangeEscposStatus(BareLink& link);

/// The exchange of one line-mode status.
void exchangeLineStatus(BareLink& link);

}  // namespace quordalvane::bench
