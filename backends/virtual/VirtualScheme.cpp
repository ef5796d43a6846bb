#include "backends/virtual/VirtualScheme.h"

#include <utility>

#include "backends/virtual/VirtualAccessory.h"

namespace quordalvane::virtuals {
namespace {

void takeAnyPlace(const std::string& /*place*/) {}

std::shared_ptr<EAAccessory> make(const DeviceSpec& spec, AccessoryIdentity identity,
                                  Clock& clock) {
  return makePrinterAccessory(std::move(identity), spec.options, clock);
}

}  // namespace

constinit const Scheme virtualScheme = {
    .name = "virtual",
    .place = "",
    .about = "the built-in virtual printer",
    .checkPlace = takeAnyPlace,
    .make = make,
    .ifSilent = "remove the faults, such as silence=1, from the device text",
    .ifNotUnderstood = "remove the faults, such as silence=1, from the device text",
    .moreKeys = "the printer's state and faults",
    .nameWithoutPlace = "virtual printer",
    .isOfOneProcess = true,
};

}  // namespace quordalvane::virtuals
