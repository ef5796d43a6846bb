#include "backends/Devices.h"

#include <string>
#include <vector>

#include "c-interface/Failures.h"

using namespace quordalvane::c;

QuorCode quor_connect_devices(const char* const* specs, size_t count) {
  return guarded([&] {
    std::vector<std::string> texts;
    for (size_t i = 0; i < count; ++i) {
      given(specs, "the specs");
      texts.emplace_back(&given(specs[i], "a spec"));
    }
    quordalvane::connectDevices(texts);
  });
}
