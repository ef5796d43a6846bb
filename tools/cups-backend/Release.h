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
/// that knows of the hold starts the job only if a person releases it. But if a scheduler was
/// killed before it saved the hold in the job's record, `controlFile`, the next scheduler starts
/// the job by itself.
///
/// The scheduler that started this job knew of the hold in two cases: it is the one that held the
/// job, or it has read a record that an earlier scheduler wrote after the hold. In these cases the
/// result is true. In all other cases a release is uncertain, and the result is false.
/// `schedulerStart` is the start of the present scheduler, empty if unknown. All times are
/// milliseconds since 1970.
bool isReleased(std::int64_t told, std::optional<std::int64_t> schedulerStart,
                const std::filesystem::path& controlFile);

}  // namespace quordalvane::cups
