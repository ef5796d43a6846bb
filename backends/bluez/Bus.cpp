#include "backends/bluez/Bus.h"

#include <poll.h>

#include <cerrno>
#include <future>
#include <optional>
#include <thread>
#include <utility>

#include "backends/bluez/BluetoothError.h"

namespace quordalvane::bluez {
namespace {

using namespace std::chrono_literals;

constexpr auto noReply = "org.freedesktop.DBus.Error.NoReply";

// The result of an attempt to connect. An error is stored as text, so that no exception passes from
// one thread to another.
struct Attempt {
  std::unique_ptr<sdbus::IConnection> connection;
  std::string error;
};

Attempt connectToBus() {
  try {
    return {.connection = sdbus::createSystemBusConnection(), .error = ""};
  } catch (const sdbus::Error& error) {
    return {.connection = nullptr, .error = error.getMessage()};
  }
}

[[noreturn]] void throwBusGone(const sdbus::Error& error) {
  fail(BluetoothError::NoBus, "the connection has ended: " + error.getMessage());
}

int millisecondsUntil(SteadyTime deadline) {
  const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - SteadyClock::now());
  return static_cast<int>(std::clamp<std::chrono::milliseconds>(left, 0ms, 1h).count());
}

}  // namespace

// Connects on another thread. If a bus accepts the connection and does not answer, the thread that
// connects is blocked for a minute and a half.
Bus::Bus(SteadyTime deadline) {
  std::packaged_task<Attempt()> task(connectToBus);
  auto attempt = task.get_future();
  std::thread(std::move(task)).detach();
  if (attempt.wait_until(deadline) != std::future_status::ready) {
    fail(BluetoothError::NoBus, "the message bus does not answer");
  }
  Attempt made = attempt.get();
  if (!made.connection) {
    fail(BluetoothError::NoBus, made.error);
  }
  connection_ = std::move(made.connection);
  // The time limit for the few calls that the library makes by itself.
  connection_->setMethodCallTimeout(2s);
}

sdbus::MethodReply Bus::answerTo(const sdbus::MethodCall& message, sdbus::IProxy& proxy,
                                 SteadyTime deadline) {
  std::optional<sdbus::MethodReply> answer;
  std::optional<sdbus::Error> refusal;
  const auto note = [&](sdbus::MethodReply& reply, const ReplyError& error) {
    error ? void(refusal = *error) : void(answer = reply);
  };
  sdbus::PendingAsyncCall pending = send(proxy, message, note, 1h);
  if (!handleUntil(deadline, [&] { return answer || refusal; })) {
    pending.cancel();
    throw sdbus::Error(ErrorName(noReply), "no answer within the time limit");
  }
  if (refusal) {
    throw sdbus::Error(*refusal);
  }
  return *answer;
}

bool Bus::handleUntil(SteadyTime deadline, const std::function<bool()>& isDone) {
  constexpr int noFile = -1;
  handlePending();
  while (!isDone()) {
    if (waitForNews(deadline, noFile) == Woken::ByTheClock && SteadyClock::now() >= deadline) {
      return false;
    }
    handlePending();
  }
  return true;
}

void Bus::handleWhileOpen(int watched, const std::function<bool()>& isDone) {
  handlePending();
  while (!isDone() && waitForNews(SteadyClock::now() + 1h, watched) != Woken::ByTheFile) {
    handlePending();
  }
}

Bus::Woken Bus::waitForNews(SteadyTime deadline, int watched) {
  const auto bus = connection_->getEventLoopPollData();
  const int ofTheBus = bus.getPollTimeout();
  const int ofTheCaller = millisecondsUntil(deadline);
  pollfd files[] = {{.fd = bus.fd, .events = bus.events, .revents = 0},
                    {.fd = watched, .events = POLLRDHUP, .revents = 0}};
  const int count = ::poll(files, 2, ofTheBus < 0 ? ofTheCaller : std::min(ofTheBus, ofTheCaller));
  if (count > 0 && files[1].revents != 0) {
    return Woken::ByTheFile;
  }
  return count > 0 ? Woken::ByTheBus : Woken::ByTheClock;
}

void Bus::handlePending() {
  try {
    while (handleMessage(*connection_)) {
    }
  } catch (const sdbus::Error& error) {
    throwBusGone(error);
  }
}

bool isSilence(const sdbus::Error& error) {
  return error.getName() == noReply || error.getName() == "System.Error.ETIMEDOUT" ||
         error.getName() == "org.freedesktop.DBus.Error.Timeout";
}

}  // namespace quordalvane::bluez
