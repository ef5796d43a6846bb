#pragma once

#include <optional>
#include <string>

#include "job/PrintResult.h"

namespace quordalvane {

/// Why a job ends without a confirmation.
struct Setback {
  PrintObstacle obstacle;
  std::string reason;  ///< for a person
};

/// Empty after success.
using MaybeSetback = std::optional<Setback>;

}  // namespace quordalvane
