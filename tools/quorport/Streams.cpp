#include "tools/quorport/Streams.h"

#include "logging/DescriptorOutput.h"

namespace quordalvane::tool {

void complain(const std::string& line, const Streams& streams) {
  writeAll(streams.err, "quorport: " + line + "\n");  // if this fails, it cannot be reported
}

}  // namespace quordalvane::tool
