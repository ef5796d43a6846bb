#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <span>
#include <thread>
#include <vector>

#include "bench/Cores.h"
#include "bench/Endpoint.h"

namespace quordalvane::bench {

/// The requests and replies of the exchanges that are measured.
extern const std::vector<std::uint8_t> lineStatusRequest;  // 13 bytes
extern const std::vector<std::uint8_t> lineStatusReply;    // 9 bytes
extern const std::vector<std::uint8_t> dataCancelEnd;      // 6 bytes, without a reply
extern const std::vector<std::uint8_t> escposQueries[3];   // 3 bytes each
inline constexpr std::uint8_t escposReply = 0x12;          // to each of them

/// A printer's end of one connection, on a thread of its own that blocks in `read`. It runs until
/// the other side ends the connection, and is waited for at the end: it must outlive that side.
class Peer {
 public:
  explicit Peer(Core core) : core_(core) {}
  ~Peer();
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;

  /// Answers status requests of both emulations, each `delay` after it arrived.
  void answer(int descriptor, std::chrono::microseconds delay = {});

  /// Takes all connections that are made to the endpoint, which must outlive this, one after the
  /// other, and answers on each. Ends with the first read that returns no byte.
  void answerAll(Endpoint& endpoint);

  /// Answers on many connections by turns.
  void answerEach(std::vector<int> descriptors);

  /// Takes all that arrives and calls `taken` with the size of each piece.
  void drain(int descriptor, std::function<void(std::size_t)> taken);

 private:
  void run(std::function<void()> body);

  const Core core_;
  std::thread thread_;
};

/// Sends all of `bytes` by blocking calls; false if the other side has ended.
bool sendAll(int descriptor, std::span<const std::uint8_t> bytes);

}  // namespace quordalvane::bench
