#pragma once

#include <optional>
#include <string>

#include "job/PrintResult.h"

namespace quordalvane {

/// The reason why a job ends without a confirmation.
struct Setback {
  PrintObstacle obstacle;
  std::string reason;  ///< the reason as a text for a person
};

/// A setback, or null after success.
using MaybeSetback = std::optional<Setback>;

}  // namespace quordalvane
