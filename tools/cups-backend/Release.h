#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace quordalvane::cups {

/// When the scheduler, which is this process's parent, was started: milliseconds since 1970. It is
/// the end of a clock tick, so up to 10 ms later than the true start. Empty if the system does not
/// say.
std::optional<std::int64_t> schedulerStart(int scheduler);

/// Whether a job of which nobody knew at `told`, and that was held then, is started now because a
/// person has released it. A scheduler starts a held job for no other reason; but one that was
/// killed may have forgotten that it holds the job, and its successor starts it by itself.
///
/// So it is a person's act if the scheduler of then still runs, or if it has written the job's
/// record, `controlFile`, after that. All times are milliseconds since 1970.
bool isReleased(std::int64_t told, std::optional<std::int64_t> schedulerStart,
                const std::filesystem::path& controlFile);

}  // namespace quordalvane::cups
