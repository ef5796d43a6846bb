#pragma once

#include <sdbus-c++/sdbus-c++.h>

#include <functional>
#include <memory>
#include <string>

#include "backends/posix/Deadline.h"

namespace quordalvane::bluez {

using posix::SteadyClock;
using posix::SteadyTime;

/// Which method of which object on the bus.
struct Method {
  std::string service;
  std::string path;
  std::string interface;
  std::string name;
};

/// A connection of its own to the system's message bus. It has no thread: messages of the bus are
/// handled on the caller's thread, while a call of this class waits. For one thread at a time.
class Bus {
 public:
  /// Connects. Throws a `std::system_error` with `BluetoothError::NoBus` if there is no bus, or if
  /// it has not accepted the connection by `deadline`; the attempt then ends by itself.
  explicit Bus(SteadyTime deadline);

  sdbus::IConnection& connection() { return *connection_; }

  /// Calls the method and returns its answer. Throws a `sdbus::Error` if the answer is an error,
  /// and one for which `isSilence` is true if there is no answer by `deadline`. Throws a
  /// `std::system_error` with `BluetoothError::NoBus` if the bus has ended.
  template <typename... Arguments>
  sdbus::MethodReply call(SteadyTime deadline, const Method& method,
                          const Arguments&... arguments) {
    const auto proxy = sdbus::createProxy(*connection_, method.service, method.path);
    auto message = proxy->createMethodCall(method.interface, method.name);
    static_cast<void>((message << ... << arguments));
    return answerTo(message, *proxy, deadline);
  }

  /// Handles messages of the bus until `isDone` returns true; false if it does not by `deadline`.
  /// Throws a `std::system_error` with `BluetoothError::NoBus` if the bus has ended.
  bool handleUntil(SteadyTime deadline, const std::function<bool()>& isDone);

  /// Handles messages of the bus until `isDone` returns true, or until the file `watched` hangs up.
  /// Throws as `handleUntil` does.
  void handleWhileOpen(int watched, const std::function<bool()>& isDone);

 private:
  enum class Woken { ByTheBus, ByTheFile, ByTheClock };

  sdbus::MethodReply answerTo(const sdbus::MethodCall& message, sdbus::IProxy& proxy,
                              SteadyTime deadline);
  Woken waitForNews(SteadyTime deadline, int watched);
  void handlePending();

  std::unique_ptr<sdbus::IConnection> connection_;
};

/// Whether the error says that no answer arrived in time.
bool isSilence(const sdbus::Error& error);

}  // namespace quordalvane::bluez
