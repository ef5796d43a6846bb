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

/// Returns true if this job was started because a person has released it. The outcome of the job
/// was reported as unknown at the time `told`, and the scheduler then held the job. A scheduler
/// starts a held job only if a person releases it. But if a scheduler was killed, the hold may be
/// lost, and the next scheduler then starts the job by itself.
///
/// A person has therefore released the job in two cases: the scheduler that held the job still
/// runs, or an earlier scheduler has written the job's record, `controlFile`, after `told`. All
/// times are milliseconds since 1970.
bool isReleased(std::int64_t told, std::optional<std::int64_t> schedulerStart,
                const std::filesystem::path& controlFile);

}  // namespace quordalvane::cups
