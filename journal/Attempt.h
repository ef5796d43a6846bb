#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "job/PrintResult.h"
#include "journal/Fingerprint.h"

namespace quordalvane {

/// One attempt to print a named job. An attempt is one row of the journal.
struct Attempt {
  std::string name;         ///< the name of the job
  std::int64_t number = 0;  ///< 1 for the job's first attempt, 2 for the next, and so on
  Fingerprint data = {};
  std::string device = {};                 ///< the device text (see `DeviceSpec`)
  std::int64_t begun = 0;                  ///< the beginning, in milliseconds since 1970, UTC
  std::optional<std::int64_t> ended = {};  ///< the end, in the unit of `begun`; null before the end
  std::string outcome = {};  ///< the name of a `PrintOutcome`; "" before the attempt has ended
  std::uint64_t bytesAccepted = 0;  ///< as in `PrintResult`
  std::string reason = {};          ///< as in `PrintResult`

  /// The name of the proof that was used, as in `PrintResult`. Older versions of the journal did
  /// not record the proof: in their rows this text is "", and the obstacle is NoProof.
  std::string proof = {};
  PrintObstacle obstacle =
      PrintObstacle::NoProof;  ///< as in `PrintResult`; valid after the attempt has ended

  /// The time at which it was reported to a person that the outcome is unknown; null if this was
  /// not reported. The unit is milliseconds since 1970, UTC.
  std::optional<std::int64_t> told = {};
};

}  // namespace quordalvane
