#include "tools/cups-backend/Guard.h"

#include <cups/sidechannel.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <system_error>

namespace quordalvane::cups {
namespace {

sigset_t watchedSignals() {
  sigset_t set;
  sigemptyset(&set);
  for (const int signal : {SIGTERM, SIGINT, SIGHUP, SIGCHLD}) {
    sigaddset(&set, signal);
  }
  return set;
}

// Closes the input pipes in this process. When the worker ends, no process has the pipes open any
// more, so a filter that still writes gets an error.
void leaveInputToWorker() {
  constexpr int backChannel = 3;
  ::close(STDIN_FILENO);
  ::close(backChannel);
  ::close(CUPS_SC_FD);
}

// Waits for the worker's end, and passes stop signals on to the worker. Returns true if the
// scheduler sent a stop signal. A signal from another process does not mean that the job is no
// longer wanted.
bool awaitWorker(pid_t worker, pid_t scheduler, const sigset_t& signals, int& status) {
  bool isCanceled = false;
  while (::waitpid(worker, &status, WNOHANG) != worker) {
    siginfo_t info{};
    const int signal = ::sigwaitinfo(&signals, &info);
    if (signal > 0 && signal != SIGCHLD) {
      isCanceled = isCanceled || info.si_pid == scheduler;
      ::kill(worker, SIGTERM);
    }
  }
  return isCanceled;
}

std::string endOf(int status) {
  return WIFSIGNALED(status) ? "signal " + std::to_string(WTERMSIG(status)) +
                                   " ended the process that printed the job"
                             : "the process that printed the job was asked to stop";
}

}  // namespace

ExitCode guarded(const std::function<ExitCode()>& work,
                 const std::function<ExitCode(const BrokenOff&)>& judge) {
  const pid_t scheduler = ::getppid();
  const sigset_t signals = watchedSignals();
  ::sigprocmask(SIG_BLOCK, &signals, nullptr);
  const pid_t worker = ::fork();
  if (worker < 0) {
    throw std::system_error(errno, std::generic_category(), "no process can be started");
  }
  if (worker == 0) {
    ::_exit(static_cast<int>(work()));
  }
  leaveInputToWorker();
  int status = 0;
  const bool isCanceled = awaitWorker(worker, scheduler, signals, status);
  const bool isDecided =
      WIFEXITED(status) && WEXITSTATUS(status) != static_cast<int>(ExitCode::CutOff);
  return isDecided ? static_cast<ExitCode>(WEXITSTATUS(status))
                   : judge({.isCanceled = isCanceled, .how = endOf(status)});
}

}  // namespace quordalvane::cups
