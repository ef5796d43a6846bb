#include "job/PrintJob.h"

#include "job/JobRun.h"

namespace quordalvane {

PrintResult PrintJob::run(ByteView data) {
  return JobRun(port_, options_, cancelled_).run(data);
}

PrintResult PrintJob::run(std::string_view text) {
  return run(ByteView(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
}

}  // namespace quordalvane
