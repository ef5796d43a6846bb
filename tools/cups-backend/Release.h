#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace quordalvane::cups {

/// When the scheduler, which is this process's parent, was started: milliseconds since 1970. It is
/// the end of a clock tick, so up to 10 ms later than the true start. Empty if the system does not
/// say.
std::optional<std::int64_t> schedulerStart(int scheduler);

/// At the time `told` nobody knew whether a job was on paper, and it was held. Whether it is
/// started now because a person has released it. A scheduler starts a held job for no other reason.
/// But if it was killed, it may have forgotten that it holds the job; its successor then starts it
/// by itself.
///
/// So a person has released the job if the same scheduler still runs, or if the job's record,
/// `controlFile`, was written after `told`. All times are milliseconds since 1970.
bool isReleased(std::int64_t told, std::optional<std::int64_t> schedulerStart,
                const std::filesystem::path& controlFile);

}  // namespace quordalvane::cups
