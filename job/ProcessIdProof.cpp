#include "job/ProcessIdProof.h"

#include <algorithm>

namespace quordalvane {

JobId randomProcessId(Platform& platform) {
  constexpr std::uint32_t first = 0x20;
  constexpr std::uint32_t count = 0x7e - first + 1;
  std::uint32_t number = platform.randomNumber();
  JobId id;
  for (std::uint8_t& character : id) {
    character = static_cast<std::uint8_t>(first + number % count);
    number /= count;
  }
  return id;
}

std::vector<std::uint8_t> processIdCommand(const JobId& id) {
  return {0x1d, 0x28, 0x48, 0x06, 0x00, 0x30, 0x30, id[0], id[1], id[2], id[3]};
}

/// The ID must not occur in the data. Otherwise the printer could send the ID back before the end
/// of the job.
MaybeSetback ProcessIdProof::makeQuestion(ByteView data, std::vector<std::uint8_t>& question) {
  do {
    id_ = randomProcessId(link().port().platform());
  } while (std::search(data.begin(), data.end(), id_.begin(), id_.end()) != data.end() ||
           answers().hasNamed(id_));
  question = processIdCommand(id_);
  return std::nullopt;
}

}  // namespace quordalvane
