#include "tools/cups-backend/Worker.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <system_error>
#include <thread>

#include "tools/cups-backend/JobData.h"
#include "tools/cups-backend/QueueJob.h"
#include "tools/cups-backend/SideChannel.h"
#include "tools/process/Signals.h"

namespace quordalvane::cups {
namespace {

// If the data cannot be read now, the job is held, because it may be readable later. A job without
// data, or with too much data, can never be printed.
ExitCode printJob(const BackEndJob& job, QueueJob& queued, StatusLines& lines,
                  const std::function<void()>& onConfirmed) {
  try {
    return queued.print(readJobData(job.file), onConfirmed);
  } catch (const std::length_error& error) {
    lines.complain(std::string("the job cannot be printed: ") + error.what());
    return ExitCode::JobCanceled;
  } catch (const std::invalid_argument& error) {
    lines.complain(error.what());
    return ExitCode::QueueStopped;
  } catch (const std::exception& error) {
    lines.complain(std::string("the job cannot be read: ") + error.what());
    return ExitCode::Held;
  }
}

// Runs the job on a thread of its own. A descriptor becomes readable when the job ends.
class Printing {
 public:
  explicit Printing(std::function<ExitCode()> print)
      : ended_(::eventfd(0, EFD_CLOEXEC)), thread_([this, print = std::move(print)] {
          code_ = print();
          ::eventfd_write(ended_, 1);
        }) {}

  int descriptor() const { return ended_; }

  ExitCode await() {
    thread_.join();
    ::close(ended_);
    return code_;
  }

 private:
  const int ended_;
  ExitCode code_ = ExitCode::CutOff;
  std::thread thread_;
};

// Answers the scheduler and the filters until the job has ended.
void serve(Printing& printing, tool::StopSignals& signals, StopWish& wish, SideChannel& channel) {
  std::array<pollfd, 4> watched = {{{printing.descriptor(), POLLIN, 0},
                                    {signals.descriptor(), POLLIN, 0},
                                    {channel.descriptor(), POLLIN, 0},
                                    {STDERR_FILENO, 0, 0}}};
  constexpr int pause = 100;  // the pause in milliseconds while a filter waits for an answer
  while (watched[0].revents == 0) {
    ::poll(watched.data(), watched.size(), channel.isAnswerOwed() ? pause : -1);
    if (signals.take()) {
      wish.cancel();
    }
    if (watched[2].revents != 0 && !channel.serve()) {
      watched[2].fd = -1;
    }
    channel.answerOwed();
    if ((watched[3].revents & (POLLERR | POLLHUP)) != 0) {
      watched[3].fd = -1;
      wish.leaveWhenIdle();
    }
  }
}

}  // namespace

ExitCode work(const BackEndJob& job, const DeviceUri& uri,
              std::optional<std::int64_t> schedulerStart,
              const std::function<void()>& onConfirmed) {
  tool::StopSignals signals;
  StatusLines lines(job.standingReasons);
  PrinterState state;
  StopWish wish([] { ::_exit(static_cast<int>(ExitCode::CutOff)); });
  QueueJob queued(job, uri, {lines, wish, state, schedulerStart});
  SideChannel channel(state, queued.printer().deviceId(), [&] { return isJobWhole(job.file); });
  Printing printing([&] { return printJob(job, queued, lines, onConfirmed); });
  serve(printing, signals, wish, channel);
  return printing.await();
}

}  // namespace quordalvane::cups
