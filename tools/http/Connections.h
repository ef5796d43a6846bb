#pragma once

#include <chrono>
#include <list>

namespace quordalvane::http {

/// One connection of a client.
struct Connection {
  enum class Phase { Asking, Answered, Reading };
  int descriptor;
  std::chrono::nanoseconds since;  // of its phase
  Phase phase = Phase::Asking;
  bool isCutOff = false;
};

/// The connections there are, so that none can be held for ever and a new one finds room.
class Connections {
 public:
  using Time = std::chrono::nanoseconds;

  /// Notes a new connection; the longest-lived one gives way if there are too many.
  Connection& add(int descriptor, Time now);
  void remove(const Connection& connection);

  /// Notes that it is doing something else from now on.
  static void enter(Connection& connection, Connection::Phase phase, Time now);

  /// Cuts off one, or those that have taken too long.
  static void cutOff(Connection& connection);
  void cutOffTheSlow(Time now);

  bool isEmpty() const { return connections_.empty(); }

 private:
  void makeRoom();

  std::list<Connection> connections_;
};

}  // namespace quordalvane::http
