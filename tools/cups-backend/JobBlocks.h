#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tools/cups-backend/BackEndJob.h"
#include "tools/cups-backend/DeviceUri.h"

namespace quordalvane::cups {

/// A part of a job that the printer confirms as a whole: one copy or all copies.
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
