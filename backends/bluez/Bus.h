#pragma once

#include <functional>
#include <memory>
#include <string>

#include "backends/bluez/BusLibrary.h"
#include "backends/posix/Deadline.h"

namespace quordalvane::bluez {

using posix::SteadyClock;
using posix::SteadyTime;

/// Names a method of an object on the bus.
struct Method {
  std::string service;
  std::string path;
  std::string interface;
  std::string name;
};

/// A separate connection to the system's message bus. The connection has no thread of its own: it
/// handles messages of the bus on the caller's thread, while the caller waits in a function of this
/// class. Only one thread at a time may use it.
class Bus {
 public:
  /// Connects to the bus. Throws a `std::system_error` with `BluetoothError::NoBus` if there is no
  /// bus, or if the bus has not accepted the connection by `deadline`. An attempt that is too slow
  /// continues after the exception, and ends by itself.
  explicit Bus(SteadyTime deadline);

  sdbus::IConnection& connection() { return *connection_; }

  /// Calls the method and returns its answer. Throws a `sdbus::Error` if the answer is an error. If
  /// there is no answer by `deadline`, throws a `sdbus::Error` for which `isSilence` returns true.
  /// Throws a `std::system_error` with `BluetoothError::NoBus` if the bus has ended.
  template <typename... Arguments>
  sdbus::MethodReply call(SteadyTime deadline, const Method& method,
                          const Arguments&... arguments) {
    const auto proxy = sdbus::createProxy(*connection_, ServiceName(method.service),
                                          sdbus::ObjectPath(method.path));
    auto message =
        proxy->createMethodCall(InterfaceName(method.interface), MemberName(method.name));
    static_cast<void>((message << ... << arguments));
    return answerTo(message, *proxy, deadline);
  }

  /// Handles messages of the bus until `isDone` returns true. Returns false if `isDone` has not
  /// returned true by `deadline`. Throws a `std::system_error` with `BluetoothError::NoBus` if the
  /// bus has ended.
  bool handleUntil(SteadyTime deadline, const std::function<bool()>& isDone);

  /// Handles messages of the bus until `isDone` returns true, or until the descriptor `watched`
  /// hangs up. Throws the exceptions of `handleUntil`.
  void handleWhileOpen(int watched, const std::function<bool()>& isDone);

 private:
  enum class Woken { ByTheBus, ByTheFile, ByTheClock };

  sdbus::MethodReply answerTo(const sdbus::MethodCall& message, sdbus::IProxy& proxy,
                              SteadyTime deadline);
  Woken waitForNews(SteadyTime deadline, int watched);
  void handlePending();

  std::unique_ptr<sdbus::IConnection> connection_;
};

/// Returns whether the error means that no answer arrived in time.
bool isSilence(const sdbus::Error& error);

}  // namespace quordalvane::bluez
