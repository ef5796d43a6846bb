#include "tests/unit/posix/SystemCalls.h"

#include <netdb.h>

#include <cerrno>
#include <utility>

namespace quordalvane::posix {
namespace {

unsigned long answeredRequest = 0;
AnsweredIoctl::Answer answer;
std::string unknownHost;

}  // namespace

AnsweredIoctl::AnsweredIoctl(unsigned long request, Answer given) {
  answeredRequest = request;
  answer = std::move(given);
}

AnsweredIoctl::~AnsweredIoctl() {
  answer = nullptr;
}

int unknownRequest(void* /*argument*/) {
  errno = ENOTTY;
  return -1;
}

UnknownHost::UnknownHost(std::string name) {
  unknownHost = std::move(name);
}

UnknownHost::~UnknownHost() {
  unknownHost.clear();
}

// The names that the linker gives the two functions and their replacements (--wrap).
int realIoctl(int number, unsigned long request, ...) asm("__real_ioctl");
int ioctlOfTest(int number, unsigned long request, void* argument) asm("__wrap_ioctl");
int realLookup(const char* host, const char* service, const addrinfo* hints,
               addrinfo** found) asm("__real_getaddrinfo");
int lookupOfTest(const char* host, const char* service, const addrinfo* hints,
                 addrinfo** found) asm("__wrap_getaddrinfo");

int ioctlOfTest(int number, unsigned long request, void* argument) {
  return answer && request == answeredRequest ? answer(argument)
                                              : realIoctl(number, request, argument);
}

int lookupOfTest(const char* host, const char* service, const addrinfo* hints, addrinfo** found) {
  return host != nullptr && unknownHost == host ? EAI_NONAME
                                                : realLookup(host, service, hints, found);
}

}  // namespace quordalvane::posix
