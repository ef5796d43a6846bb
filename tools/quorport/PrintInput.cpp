#include "tools/quorport/PrintInput.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>

#include "logging/Quoted.h"
#include "tools/quorport/CommandFailure.h"

namespace quordalvane::tool {
namespace {

// Far above any receipt; small enough for the machine if the file has no end.
constexpr std::size_t largestJob = std::size_t{256} << 20U;
constexpr std::size_t pieceSize = std::size_t{64} << 10U;

[[noreturn]] void fail(const std::string& what, const std::string& why) {
  throw CommandFailure(ExitCode::Usage, what + " cannot be read: " + why + "; nothing was sent");
}

std::vector<std::uint8_t> readAll(int descriptor, const std::string& what) {
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
      fail(what, std::generic_category().message(error));
    }
    if (data.size() > largestJob) {
      fail(what, "it is larger than 256 MiB");
    }
  }
}

std::vector<std::uint8_t> readToEnd(int descriptor, const std::string& what) {
  auto data = readAll(descriptor, what);
  if (data.empty()) {
    throw CommandFailure(ExitCode::Usage, what + " is empty: there is nothing to print");
  }
  return data;
}

}  // namespace

std::vector<std::uint8_t> readJob(const std::string& file, const Streams& streams) {
  if (file == "-") {
    return readToEnd(streams.in, "standard input");
  }
  const std::string what = "the file " + inQuotes(file);
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> opened(std::fopen(file.c_str(), "rbe"),
                                                               std::fclose);
  if (opened == nullptr) {
    fail(what, std::generic_category().message(errno));
  }
  return readToEnd(::fileno(opened.get()), what);
}

}  // namespace quordalvane::tool
