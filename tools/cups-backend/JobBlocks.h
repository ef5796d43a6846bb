#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/cups-backend/BackEndJob.h"
#include "tools/cups-backend/DeviceUri.h"

namespace quordalvane::cups {

/// A part of a job that the printer confirms as a whole.
struct JobBlock {
  std::string name;     ///< in the journal
  unsigned number = 1;  ///< of its first copy
  unsigned copies = 1;  ///< that it holds
};

/// The blocks of a job, in their order: one for each copy, unless all are to be one.
std::vector<JobBlock> blocksOf(const BackEndJob& job, const DeviceUri& uri);

/// The data of one block.
std::vector<std::uint8_t> dataOf(const JobBlock& block, const std::vector<std::uint8_t>& copy);

}  // namespace quordalvane::cups
