#include "job/HearOut.h"

namespace quordalvane {
namespace {

constexpr auto quiet = std::chrono::seconds(1);
constexpr int enough = 2;
constexpr int mostRounds = 6;

// The limit for the whole wait is this time plus twice the port's time-out.
constexpr auto timeForSilence = std::chrono::seconds(5);

bool awaitAnother(PortLink& link, const std::function<std::uint64_t()>& count,
                  std::chrono::nanoseconds limit) {
  const std::uint64_t before = count();
  return link.await([&](ByteView) { return count() > before; }, limit);
}

}  // namespace

bool hearOut(PortLink& link, ByteView question, const std::function<std::uint64_t()>& count) {
  const auto end = link.now() + 2 * link.timeout() + timeForSilence;
  int clean = 0;
  for (int round = 0; round < mostRounds && clean < enough; ++round) {
    const std::uint64_t before = count();
    if (link.send(question) || !awaitAnother(link, count, link.timeout())) {
      return false;
    }
    while (awaitAnother(link, count, quiet)) {
      if (link.now() > end) {
        return false;
      }
    }
    clean = count() == before + 1 ? clean + 1 : 0;
  }
  return clean == enough;
}

}  // namespace quordalvane
