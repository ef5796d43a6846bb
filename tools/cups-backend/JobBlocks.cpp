#include "tools/cups-backend/JobBlocks.h"

namespace quordalvane::cups {

std::vector<JobBlock> blocksOf(const BackEndJob& job, const DeviceUri& uri) {
  if (uri.areCopiesTogether || job.copies == 1) {
    return {{.name = job.name, .copies = job.copies}};
  }
  std::vector<JobBlock> blocks;
  for (unsigned copy = 1; copy <= job.copies; ++copy) {
    blocks.push_back({.name = job.name + " copy " + std::to_string(copy), .number = copy});
  }
  return blocks;
}

std::vector<std::uint8_t> dataOf(const JobBlock& block, const std::vector<std::uint8_t>& copy) {
  std::vector<std::uint8_t> data;
  data.reserve(block.copies * copy.size());
  for (unsigned i = 0; i < block.copies; ++i) {
    data.insert(data.end(), copy.begin(), copy.end());
  }
  return data;
}

}  // namespace quordalvane::cups
