#pragma once

#include <functional>
#include <string>

namespace quordalvane::posix {

/// While this object exists, `answer` replaces the system's `ioctl` for one request code. The
/// linker redirects the calls.
class AnsweredIoctl {
 public:
  /// Gets the third argument of the call, and returns the result of the call.
  using Answer = std::function<int(void* argument)>;

  AnsweredIoctl(unsigned long request, Answer answer);
  ~AnsweredIoctl();
  AnsweredIoctl(const AnsweredIoctl&) = delete;
  AnsweredIoctl& operator=(const AnsweredIoctl&) = delete;
};

/// The answer to a request that the driver does not know.
int unknownRequest(void* argument);

/// While this object exists, the resolver does not know the host `name`.
class UnknownHost {
 public:
  explicit UnknownHost(std::string name);
  ~UnknownHost();
  UnknownHost(const UnknownHost&) = delete;
  UnknownHost& operator=(const UnknownHost&) = delete;
};

}  // namespace quordalvane::posix
