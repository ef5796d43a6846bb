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

/// The requests and replies of the measured exchanges.
extern const std::vector<std::uint8_t> lineStatusRequest;  // 13 bytes
extern const std::vector<std::uint8_t> lineStatusReply;    // 9 bytes
extern const std::vector<std::uint8_t> dataCancelEnd;      // 6 bytes; a command without an answer
extern const std::vector<std::uint8_t> escposQueries[3];   // 3 bytes each
inline constexpr std::uint8_t escposReply = 0x12;          // the reply to each of the queries

/// The printer's side of one or more connections, on a thread of its own that blocks until bytes
/// arrive. The thread ends only after the other side has closed its connections. The destructor
/// waits for the thread, so the other side must be closed before the peer is destroyed.
class Peer {
 public:
  explicit Peer(Core core) : core_(core) {}
  ~Peer();
  Peer(const Peer&) = delete;
  Peer& operator=(const Peer&) = delete;

  /// Answers status requests of both emulations, each after `delay`.
  void answer(int descriptor, std::chrono::microseconds delay = {});

  /// Accepts all connections to the endpoint, one after another, and answers on each. Ends if a
  /// connection closes without sending a byte. The endpoint must outlive this object.
  void answerAll(Endpoint& endpoint);

  /// Answers on many connections, in the order in which requests arrive.
  void answerEach(std::vector<int> descriptors);

  /// Reads everything that arrives, and calls `taken` with the size of each piece.
  void drain(int descriptor, std::function<void(std::size_t)> taken);

 private:
  void run(std::function<void()> body);

  const Core core_;
  std::thread thread_;
};

/// Sends all bytes by blocking calls. Returns false if the other side has ended the connection.
bool sendAll(int descriptor, std::span<const std::uint8_t> bytes);

}  // namespace quordalvane::bench
