#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace quordalvane::cups {

/// Returns the time at which the scheduler, the parent of this process, was started, in
/// milliseconds since 1970. The system counts this time in clock ticks. The result is the end of
/// the tick, up to 10 ms after the true start. Returns empty if the system does not know the
/// process.
std::optional<std::int64_t> schedulerStart(int scheduler);

/// Returns true if this job was started because a person has released it.
///
/// At the time `told`, a person was told that the outcome of the job is unknown. The scheduler then
/// held the job. A scheduler starts a held job only if a person releases it. Some time after the
/// hold, the scheduler writes to the job's record, `controlFile`, that the job is held. If it is
/// killed before it writes this, the next scheduler does not know that the job is held, and starts
/// the job by itself.
///
/// The result is true in two cases. First, the present scheduler was started before `told`, so it
/// has held the job itself. Second, an earlier scheduler wrote the record after the job was held,
/// so the present scheduler has read there that the job is held. In all other cases it is uncertain
/// whether a person released the job, and the result is false. `schedulerStart` is the time at
/// which the present scheduler was started, empty if unknown. All times are milliseconds since
/// 1970.
bool isReleased(std::int64_t told, std::optional<std::int64_t> schedulerStart,
                const std::filesystem::path& controlFile);

}  // namespace quordalvane::cups
