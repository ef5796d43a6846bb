#pragma once

#include <cstdint>
#include <span>

namespace quordalvane::bench {

/// One side of a connection that uses only direct system calls. No library can be faster, so the
/// report compares our times with the times of such a link.
class BareLink {
 public:
  /// Takes over a connected descriptor and makes it non-blocking.
  explicit BareLink(int descriptor);
  ~BareLink();
  BareLink(const BareLink&) = delete;
  BareLink& operator=(const BareLink&) = delete;

  /// Writes the request, then polls and reads until `reply` is full.
  void exchange(std::span<const std::uint8_t> request, std::span<std::uint8_t> reply);

  /// Writes all bytes. Whenever the system takes none, polls until it takes some.
  void write(std::span<const std::uint8_t> bytes);

  /// Waits at most `milliseconds` for bytes. Returns true if bytes can be read.
  bool poll(int milliseconds) const;

  /// Reads without waiting. Returns how many bytes were read; 0 if there are none.
  std::size_t read(std::span<std::uint8_t> bytes);

 private:
  const int descriptor_;
};

/// Exchanges the bytes of one ESC/POS status query.
void exchangeEscposStatus(BareLink& link);

/// Exchanges the bytes of one line-mode status query.
void exchangeLineStatus(BareLink& link);

}  // namespace quordalvane::bench
