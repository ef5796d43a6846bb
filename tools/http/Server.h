#pragma once

#include <poll.h>

#include <chrono>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/http/EventLog.h"
#include "tools/http/Gate.h"

namespace quordalvane::http {

/// A request of a browser.
struct Request {
  std::string method;  ///< GET or POST; a HEAD request becomes GET
  std::string path;    ///< the part of the path after the token and a slash
  std::map<std::string, std::string> query;
  std::string body;
  std::optional<std::uint64_t> lastEvent;  ///< the number of the last event read, if any
};

/// The answer to a request: a text, or a stream of events.
struct Answer {
  unsigned status = 200;
  std::string type = "application/json";
  Text body;

  /// The server sends the texts of `first`, then each event of its log whose number is greater than
  /// `after`. The `body` of the answer is not used.
  struct Events {
    std::deque<Text> first;
    std::uint64_t after = 0;
  };
  std::optional<Events> events{};
};

/// Returns an answer with a text of this content type.
Answer answerWith(std::string text, std::string type = "application/json");

/// Returns an answer that refuses the request: {"ok": false, "error": why}. `why` must not contain
/// characters that need an escape in JSON.
Answer refusal(unsigned status, const std::string& why);

/// A web server that works in the event loop of its owner: it never waits for a client and starts
/// no thread. All calls are made on the owner's thread.
///
/// The limits below prevent a client from blocking others. The connection of a client that takes
/// too long is closed. If there are too many connections, a new one replaces the one that has
/// waited longest. A reader of events that is too slow is disconnected.
class Server {
 public:
  using Time = std::chrono::nanoseconds;  ///< a time on the steady clock of the server's owner
  using Handler = std::function<Answer(const Request&)>;

  static constexpr std::size_t longestBody = std::size_t{64} << 10U;  ///< bytes
  static constexpr std::size_t longestHead = std::size_t{16} << 10U;  ///< bytes, approximately
  static constexpr std::size_t mostConnections = 128;
  static constexpr std::size_t mostReaders = 64;
  static constexpr std::chrono::seconds longestWait{20};     ///< a client's time to send a request
  static constexpr std::chrono::seconds longestAnswer{120};  ///< a client's time to read an answer

  /// `listening` is a socket that already listens at `endpoint`; the caller remains its owner.
  /// Throws std::system_error or std::runtime_error if the server cannot be started.
  Server(int listening, Endpoint endpoint, Handler handler);
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  /// Returns http://HOST:PORT/TOKEN/.
  std::string address() const;

  /// Returns the log of the events that are sent to every reader.
  const EventLog& events() const;

  /// Sends an event to every reader, at the next call of `work`.
  void publish(std::string_view name, std::string_view data);

  /// Returns the number of connected readers of events.
  std::size_t readers() const;

  /// Adds the descriptors that the server waits for.
  void await(std::vector<pollfd>& awaited) const;

  /// Returns the time at which `work` must be called even if no descriptor is ready; empty if
  /// never.
  std::optional<Time> nextEvent(Time now) const;

  /// Does all that can be done now. Never blocks.
  void work(Time now);

 private:
  class Machine;
  std::unique_ptr<Machine> machine_;
};

}  // namespace quordalvane::http
