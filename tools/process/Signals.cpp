#include "tools/process/Signals.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace quordalvane::tool {
namespace {

bool isIgnored(int signal) {
  struct sigaction now {};
  return ::sigaction(signal, nullptr, &now) == 0 && now.sa_handler == SIG_IGN;
}

sigset_t stopSet() {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGINT);
  sigaddset(&set, SIGTERM);
  if (!isIgnored(SIGHUP)) {
    sigaddset(&set, SIGHUP);
  }
  return set;
}

int orThrow(int descriptor) {
  if (descriptor < 0) {
    throw std::system_error(errno, std::generic_category(), "cannot wait for signals");
  }
  return descriptor;
}

}  // namespace

StopSignals::StopSignals() {
  const sigset_t set = stopSet();
  descriptor_ = orThrow(::signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC));
  ::pthread_sigmask(SIG_BLOCK, &set, &before_);
}

StopSignals::~StopSignals() {
  while (take()) {
  }
  ::pthread_sigmask(SIG_SETMASK, &before_, nullptr);
  ::close(descriptor_);
}

std::optional<int> StopSignals::take() {
  signalfd_siginfo info{};
  if (::read(descriptor_, &info, sizeof info) != sizeof info) {
    return std::nullopt;
  }
  return static_cast<int>(info.ssi_signo);
}

SignalWatch::SignalWatch(std::function<void(int)> onSignal)
    : onSignal_(std::move(onSignal)),
      end_(orThrow(::eventfd(0, EFD_CLOEXEC))),
      thread_([this] { watch(); }) {}

SignalWatch::~SignalWatch() {
  ::eventfd_write(end_, 1);
  thread_.join();
  ::close(end_);
}

void SignalWatch::watch() {
  pollfd awaited[] = {{.fd = signals_.descriptor(), .events = POLLIN, .revents = 0},
                      {.fd = end_, .events = POLLIN, .revents = 0}};
  while (awaited[1].revents == 0) {
    if (::poll(awaited, std::size(awaited), -1) > 0) {
      if (const auto signal = signals_.take()) {
        onSignal_(*signal);
      }
    }
  }
}

}  // namespace quordalvane::tool
