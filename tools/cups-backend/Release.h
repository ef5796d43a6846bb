#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace quordalvane::cups {

/// When the scheduler, which is the parent of this process, was started: milliseconds since 1970.
/// The system knows the time to a clock tick; this is the tick's end, up to 10 ms after the true
/// start. Empty if the system does not know the process.
std::optional<std::int64_t> schedulerStart(int scheduler);

/// True if this job was started because a person has released it. At the time `told` its outcome
/// was reported as unknown and the scheduler held it. A scheduler starts a held job only if a
/// person releases it. But a scheduler that was killed may have lost the hold; then the next
/// scheduler starts the job by itself.
///
/// So a person has released the job in two cases: the same scheduler still runs, or the job's
/// record, `controlFile`, was written after `told`. All times are milliseconds since 1970.
bool isReleased(std::int64_t told, std::optional<std::int64_t> schedulerStart,
                const std::filesystem::path& controlFile);

}  // namespace quordalvane::cups
