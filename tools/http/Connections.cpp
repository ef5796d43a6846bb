#include "tools/http/Connections.h"

#include <poll.h>
#include <sys/socket.h>

#include <algorithm>

#include "tools/http/Server.h"

namespace quordalvane::http {
namespace {

bool mayGiveWay(const Connection& connection) {
  return connection.phase != Connection::Phase::Reading && !connection.isCutOff;
}

}  // namespace

Connection& Connections::add(int descriptor, Time now) {
  makeRoom();
  connections_.push_back({.descriptor = descriptor, .since = now});
  return connections_.back();
}

void Connections::remove(const Connection& connection) {
  connections_.remove_if([&](const Connection& one) { return &one == &connection; });
}

void Connections::enter(Connection& connection, Connection::Phase phase, Time now) {
  connection.phase = phase;
  connection.since = now;
}

bool Connections::hasLeft(const Connection& connection) {
  pollfd asked{.fd = connection.descriptor, .events = POLLRDHUP, .revents = 0};
  return ::poll(&asked, 1, 0) > 0;
}

// `shutdown` ends the connection. The web library then notices the end and closes the descriptor.
void Connections::cutOff(Connection& connection) {
  ::shutdown(connection.descriptor, SHUT_RDWR);
  connection.isCutOff = true;
}

void Connections::cutOffTheSlow(Time now) {
  for (Connection& connection : connections_) {
    const Time longest =
        connection.phase == Connection::Phase::Asking ? Server::longestWait : Server::longestAnswer;
    if (mayGiveWay(connection) && now - connection.since > longest) {
      cutOff(connection);
    }
  }
}

void Connections::makeRoom() {
  const auto present = std::count_if(connections_.begin(), connections_.end(),
                                     [](const Connection& one) { return !one.isCutOff; });
  if (static_cast<std::size_t>(present) < Server::mostConnections) {
    return;
  }
  Connection* oldest = nullptr;
  for (Connection& connection : connections_) {
    const bool isOlder = oldest == nullptr || connection.since < oldest->since;
    oldest = mayGiveWay(connection) && isOlder ? &connection : oldest;
  }
  if (oldest != nullptr) {
    cutOff(*oldest);
  }
}

}  // namespace quordalvane::http
