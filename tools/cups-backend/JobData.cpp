#include "tools/cups-backend/JobData.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>

#include "tools/process/WholeInput.h"

namespace quordalvane::cups {
namespace {

// Reads all data from `descriptor`, and closes it.
std::vector<std::uint8_t> readAndClose(int descriptor) {
  std::vector<std::uint8_t> data;
  try {
    data = tool::readWhole(descriptor);
  } catch (...) {
    ::close(descriptor);
    throw;
  }
  ::close(descriptor);
  return data;
}

}  // namespace

std::vector<std::uint8_t> readJobData(const std::optional<std::filesystem::path>& file) {
  const int descriptor = file ? ::open(file->c_str(), O_RDONLY | O_CLOEXEC) : STDIN_FILENO;
  if (descriptor < 0) {
    throw std::system_error(errno, std::generic_category());
  }
  auto data = file ? readAndClose(descriptor) : tool::readWhole(descriptor);
  if (data.empty()) {
    throw std::length_error("it is empty: there is nothing to print");
  }
  return data;
}

bool isJobWhole(const std::optional<std::filesystem::path>& file) {
  pollfd input{.fd = STDIN_FILENO, .events = 0, .revents = 0};
  return file || (::poll(&input, 1, 0) == 1 && (input.revents & POLLHUP) != 0);
}

}  // namespace quordalvane::cups
