#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "job/PrintResult.h"
#include "journal/Fingerprint.h"

namespace quordalvane {

/// One attempt to print the job of a name, a row of the journal.
struct Attempt {
  std::string name;         ///< of the job
  std::int64_t number = 0;  ///< 1 for the first, and so on: the order, independent of the clock
  Fingerprint data = {};
  std::string device = {};                 ///< the text of the device
  std::int64_t begun = 0;                  ///< milliseconds since 1970, UTC
  std::optional<std::int64_t> ended = {};  ///< likewise; empty until the outcome is known
  std::string outcome = {};                ///< "" until it is known, then a `PrintOutcome`'s name
  std::uint64_t bytesAccepted = 0;         ///< as in `PrintResult`
  std::string reason = {};                 ///< as in `PrintResult`

  /// The name of the proof that was used, as in `PrintResult`; "" if the journal did not yet keep
  /// it then; the obstacle is then NoProof.
  std::string proof = {};
  PrintObstacle obstacle = PrintObstacle::NoProof;  ///< as in `PrintResult`, once it has ended

  /// When a person was told that nobody knows whether it is on paper, likewise; empty if nobody
  /// was.
  std::optional<std::int64_t> told = {};
};

}  // namespace quordalvane
