#include "tools/quorport/Streams.h"

#include "logging/DescriptorOutput.h"

namespace quordalvane::tool {

void complain(const std::string& line, const Streams& streams) {
  writeAll(streams.err, "quorport: " + line + "\n");  // if this fails, nobody can learn it
}

}  // namespace quordalvane::tool
