#include "simulator/UnaskedStatus.h"

#include <utility>

#include "simulator/StatusReplies.h"

namespace quordalvane::simulator {
namespace {

constexpr std::uint8_t drawer = 0x01;
constexpr std::uint8_t offline = 0x02;
constexpr std::uint8_t errors = 0x04;
constexpr std::uint8_t paper = 0x08;
constexpr std::uint8_t buttons = 0x40;
constexpr std::uint8_t every = drawer | offline | errors | paper | buttons;

constexpr std::uint8_t drawerBits = 0x04;
constexpr std::uint8_t offlineBits = 0x28;

Bytes chosenBits(Bytes status, std::uint8_t conditions) {
  const unsigned first = ((conditions & drawer) != 0 ? drawerBits : 0U) |
                         ((conditions & offline) != 0 ? offlineBits : 0U);
  status[0] = static_cast<std::uint8_t>(status[0] & first);
  status[1] = (conditions & errors) != 0 ? status[1] : std::uint8_t{0};
  status[2] = (conditions & paper) != 0 ? status[2] : std::uint8_t{0};
  return status;
}

}  // namespace

void UnaskedStatus::choose(std::uint8_t conditions) {
  conditions_ = conditions & every;
  latest_.clear();
}

Bytes UnaskedStatus::change(const PrinterState& state) {
  if (conditions_ == 0) {
    return {};
  }
  Bytes status = unaskedStatus(state);
  Bytes chosen = chosenBits(status, conditions_);
  if (chosen == latest_) {
    return {};
  }
  latest_ = std::move(chosen);
  return status;
}

}  // namespace quordalvane::simulator
