#include "job/ProcessIdProof.h"

#include <algorithm>
#include <random>

namespace quordalvane {

JobId randomProcessId() {
  std::random_device system;
  std::uniform_int_distribution<int> character(0x20, 0x7e);
  JobId id;
  std::generate(id.begin(), id.end(), [&] { return static_cast<std::uint8_t>(character(system)); });
  return id;
}

std::vector<std::uint8_t> processIdCommand(const JobId& id) {
  return {0x1d, 0x28, 0x48, 0x06, 0x00, 0x30, 0x30, id[0], id[1], id[2], id[3]};
}

/// An ID that occurs in the data could be named before the job's end.
MaybeSetback ProcessIdProof::makeQuestion(ByteView data, std::vector<std::uint8_t>& question) {
  do {
    id_ = randomProcessId();
  } while (std::search(data.begin(), data.end(), id_.begin(), id_.end()) != data.end() ||
           answers().hasNamed(id_));
  question = processIdCommand(id_);
  return std::nullopt;
}

}  // namespace quordalvane
