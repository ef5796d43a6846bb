#include "tools/process/WholeInput.h"

#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace quordalvane::tool {
namespace {

constexpr std::size_t pieceSize = std::size_t{64} << 10U;

}  // namespace

std::vector<std::uint8_t> readWhole(int descriptor) {
  std::vector<std::uint8_t> data;
  while (true) {
    const std::size_t size = data.size();
    data.resize(size + pieceSize);
    const ssize_t count = ::read(descriptor, data.data() + size, pieceSize);
    const int error = errno;
    data.resize(size + (count > 0 ? static_cast<std::size_t>(count) : 0));
    if (count == 0) {
      return data;
    }
    if (count < 0 && error != EINTR) {
      throw std::system_error(error, std::generic_category());
    }
    if (data.size() > largestJob) {
      throw std::length_error("it is larger than 256 MiB");
    }
  }
}

}  // namespace quordalvane::tool
