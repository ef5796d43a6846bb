#include "tools/quorport/simulate/PtyListener.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <system_error>
#include <utility>

namespace quordalvane::tool {
namespace {

using posix::Descriptor;

// The system passes bytes to the other side a moment after they were written, so a single empty
// read proves nothing.
constexpr int enoughEmptyLooks = 5;

int orThrow(int result) {
  if (result < 0) {
    throw std::system_error(errno, std::generic_category());
  }
  return result;
}

Descriptor terminal(int number) {
  return {orThrow(number), Descriptor::Kind::Terminal};
}

// Opens the other side of the terminal, and sets the terminal to pass bytes unchanged, whichever
// program opens it next.
Descriptor openOtherSide(const std::string& path) {
  Descriptor other = terminal(::open(path.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
  termios settings{};
  orThrow(::tcgetattr(other.number(), &settings));
  ::cfmakeraw(&settings);
  orThrow(::tcsetattr(other.number(), TCSANOW, &settings));
  return other;
}

class PtyLine : public Line {
 public:
  PtyLine(Descriptor descriptor, std::string path, Descriptor otherSide)
      : Line(std::move(descriptor)), path_(std::move(path)), held_(std::move(otherSide)) {}

  void noteHost() override { held_.reset(); }
  void noteHostEnded() override { held_.emplace(openOtherSide(path_)); }
  void endOutput() override {}

  bool hasSettled() override {
    const Descriptor other(::open(path_.c_str(), O_RDONLY | O_NOCTTY | O_NONBLOCK | O_CLOEXEC),
                           Descriptor::Kind::Terminal);
    int unread = 0;
    const bool isEmpty = ::ioctl(other.number(), FIONREAD, &unread) != 0 || unread == 0;
    emptyLooks_ = isEmpty ? emptyLooks_ + 1 : 0;
    return emptyLooks_ >= enoughEmptyLooks;
  }

  void resetOnClose() override {}
  bool wasReset() const override { return false; }

 private:
  const std::string path_;

  // The hosts' side of the terminal. This process keeps that side open until a host sends data.
  // Otherwise the system would report the terminal as closed.
  std::optional<Descriptor> held_;

  int emptyLooks_ = 0;
};

}  // namespace

void PtyListener::openTerminal() {
  terminal_.emplace(terminal(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK)));
  orThrow(::grantpt(descriptor()));
  orThrow(::unlockpt(descriptor()));
  std::array<char, 64> path{};
  errno = ::ptsname_r(descriptor(), path.data(), path.size());
  orThrow(errno == 0 ? 0 : -1);
  path_ = path.data();
}

std::unique_ptr<Line> PtyListener::accept() {
  return std::make_unique<PtyLine>(terminal(::fcntl(descriptor(), F_DUPFD_CLOEXEC, 0)), path_,
                                   openOtherSide(path_));
}

void PtyListener::resume(bool dropped) {
  if (dropped) {
    terminal_.reset();
    openTerminal();
  }
}

}  // namespace quordalvane::tool
