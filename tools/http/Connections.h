#pragma once

#include <chrono>
#include <list>

namespace quordalvane::http {

/// One connection of a client.
struct Connection {
  enum class Phase { Asking, Answered, Reading };
  int descriptor;
  std::chrono::nanoseconds since;  // when the current phase began
  Phase phase = Phase::Asking;
  bool isCutOff = false;
};

/// The open connections. Limits their number and duration, so that no client can block the server.
class Connections {
 public:
  using Time = std::chrono::nanoseconds;

  /// Adds a new connection. If there are too many connections, cuts off the one whose current phase
  /// began first; a connection in the phase `Reading` is never chosen.
  Connection& add(int descriptor, Time now);
  void remove(const Connection& connection);

  /// Notes that the connection begins another phase now.
  static void enter(Connection& connection, Connection::Phase phase, Time now);

  /// Returns true if the client has closed its side.
  static bool hasLeft(const Connection& connection);

  /// Cut off one connection, or all connections that have taken too long.
  static void cutOff(Connection& connection);
  void cutOffTheSlow(Time now);

  bool isEmpty() const { return connections_.empty(); }

 private:
  void makeRoom();

  std::list<Connection> connections_;
};

}  // namespace quordalvane::http
