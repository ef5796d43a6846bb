#include "tools/quorport/PrintInput.h"

#include <cerrno>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <system_error>

#include "text/Quoted.h"
#include "tools/process/WholeInput.h"
#include "tools/quorport/CommandFailure.h"

namespace quordalvane::tool {
namespace {

[[noreturn]] void fail(const std::string& what, const std::string& why) {
  throw CommandFailure(ExitCode::Usage, what + " cannot be read: " + why + "; nothing was sent");
}

std::vector<std::uint8_t> readAll(int descriptor, const std::string& what) {
  try {
    return readWhole(descriptor);
  } catch (const std::system_error& error) {
    fail(what, error.code().message());
  } catch (const std::length_error& error) {
    fail(what, error.what());
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
