#include "job/Words.h"

namespace quordalvane {

std::string grouped(std::uint64_t count) {
  std::string digits = std::to_string(count);
  for (std::size_t end = digits.size(); end > 3; end -= 3) {
    digits.insert(end - 3, 1, ',');
  }
  return digits;
}

std::string inSeconds(std::uint32_t millis) {
  return millis < 1000 ? grouped(millis) + " ms" : grouped(millis / 1000) + " s";
}

}  // namespace quordalvane
