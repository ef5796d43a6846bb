#include "platform/Platform.h"

#include <random>

namespace quordalvane {

std::uint32_t Platform::randomNumber() {
  return std::random_device()();
}

}  // namespace quordalvane
