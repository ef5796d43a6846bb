#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/cups-backend/BackEndJob.h"
#include "tools/cups-backend/DeviceUri.h"

namespace quordalvane::cups {

/// One copy of a job, or all its copies together. The printer confirms each block separately.
struct JobBlock {
  std::string name;     ///< the block's name in the journal
  unsigned number = 1;  ///< the number of the block's first copy, from 1
  unsigned copies = 1;  ///< how many copies the block contains
};

/// Returns the blocks of a job, in order: one for each copy, or one for all copies if the URI says
/// so.
std::vector<JobBlock> blocksOf(const BackEndJob& job, const DeviceUri& uri);

/// Returns the bytes of one block: `copy`, repeated for each of the block's copies.
std::vector<std::uint8_t> dataOf(const JobBlock& block, const std::vector<std::uint8_t>& copy);

}  // namespace quordalvane::cups
