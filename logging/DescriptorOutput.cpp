#include "logging/DescriptorOutput.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace quordalvane {

WriteOutcome writeAll(int descriptor, std::string_view bytes) noexcept {
  WriteOutcome outcome;
  while (outcome.written < bytes.size()) {
    const ssize_t count =
        ::write(descriptor, bytes.data() + outcome.written, bytes.size() - outcome.written);
    if (count >= 0) {
      outcome.written += static_cast<std::size_t>(count);
    } else if (errno == EAGAIN) {
      pollfd writable{.fd = descriptor, .events = POLLOUT, .revents = 0};
      ::poll(&writable, 1, -1);
    } else if (errno != EINTR) {
      outcome.error = std::error_code(errno, std::generic_category());
      return outcome;
    }
  }
  return outcome;
}

}  // namespace quordalvane
