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

/// What a browser asks for.
struct Request {
  std::string method;  ///< GET or POST; a HEAD is asked as a GET
  std::string path;    ///< below the token, without its first slash
  std::map<std::string, std::string> query;
  std::string body;
  std::optional<std::uint64_t> lastEvent;  ///< the latest event that it has read, if it says so
};

/// What it is answered: a text, or the events from then on.
struct Answer {
  unsigned status = 200;
  std::string type = "application/json";
  Text body;

  /// The reader is sent the events after this one, with these texts first; the body is not used.
  struct Events {
    std::deque<Text> first;
    std::uint64_t after = 0;
  };
  std::optional<Events> events{};
};

/// An answer with a text of that type.
Answer answerWith(std::string text, std::string type = "application/json");

/// An answer that the request is of no use: {"ok": false, "error": why}.
Answer refusal(unsigned status, const std::string& why);

/// Answers browsers from the loop of its owner: never waits for a client, starts no thread. All
/// calls are from that thread.
///
/// A client takes part in the limits below and can exhaust nothing else: a request that takes too
/// long is cut off, the connection that has been there longest gives way to a new one, and a reader
/// of events that is too slow is disconnected.
class Server {
 public:
  using Time = std::chrono::nanoseconds;  ///< of the owner's steady clock
  using Handler = std::function<Answer(const Request&)>;

  static constexpr std::size_t longestBody = std::size_t{64} << 10U;  ///< bytes
  static constexpr std::size_t longestHead = std::size_t{16} << 10U;  ///< about, bytes
  static constexpr std::size_t mostConnections = 128;
  static constexpr std::size_t mostReaders = 64;
  static constexpr std::chrono::seconds longestWait{20};     ///< for a whole request
  static constexpr std::chrono::seconds longestAnswer{120};  ///< for a client to take it

  /// Serves on a socket that listens already and remains the caller's; `endpoint` is its place.
  /// Throws std::system_error or std::runtime_error if the system refuses.
  Server(int listening, Endpoint endpoint, Handler handler);
  ~Server();
  Server(const Server&) = delete;
  Server& operator=(const Server&) = delete;

  /// http://HOST:PORT/TOKEN/
  std::string address() const;

  /// The events that readers are sent.
  const EventLog& events() const;

  /// Sends an event to every reader, with the next `work`.
  void publish(std::string_view name, std::string_view data);

  /// How many readers there are.
  std::size_t readers() const;

  /// Adds what it waits for.
  void await(std::vector<pollfd>& awaited) const;

  /// When it must work without anything that was waited for; empty if never.
  std::optional<Time> nextEvent(Time now) const;

  /// Does all that can be done now.
  void work(Time now);

 private:
  class Machine;
  std::unique_ptr<Machine> machine_;
};

}  // namespace quordalvane::http
