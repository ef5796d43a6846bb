#include "tools/cups-backend/Release.h"

#include <sys/stat.h>
#include <unistd.h>

#include <ctime>
#include <fstream>
#include <sstream>
#include <string>

#include "journal/History.h"

namespace quordalvane::cups {
namespace {

constexpr std::int64_t millisInSecond = 1000;

// The scheduler holds a job after this back end has reported that the job's outcome is unknown. If
// the scheduler writes the job's record at least this many milliseconds after the report, the
// record certainly says that the job is held. It may have written an earlier record just before the
// hold.
constexpr std::int64_t leastDelay = 1000;

std::int64_t millisSinceBoot() {
  timespec now{};
  ::clock_gettime(CLOCK_BOOTTIME, &now);
  return std::int64_t{now.tv_sec} * millisInSecond + now.tv_nsec / 1'000'000;
}

// Reads the start time from the 22nd field of the process's stat file, in clock ticks since the
// machine was started. The second field is the program's name in parentheses. The name may contain
// blanks and parentheses, so the search begins at the last parenthesis.
std::optional<std::int64_t> startInTicks(int process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/stat");
  std::string text;
  std::getline(file, text);
  const std::size_t name = text.rfind(')');
  if (name == std::string::npos) {
    return std::nullopt;
  }
  std::istringstream fields(text.substr(name + 1));
  std::string skipped;
  for (int field = 3; field < 22; ++field) {
    fields >> skipped;
  }
  std::int64_t ticks = 0;
  return fields >> ticks ? std::optional(ticks) : std::nullopt;
}

}  // namespace

std::optional<std::int64_t> schedulerStart(int scheduler) {
  const auto ticks = startInTicks(scheduler);
  if (!ticks) {
    return std::nullopt;
  }
  // The end of the tick in which this scheduler was started. Until this time, the previous
  // scheduler may have written records.
  const std::int64_t start = (*ticks + 1) * millisInSecond / ::sysconf(_SC_CLK_TCK);
  return millisecondsNow() - (millisSinceBoot() - start);
}

bool isReleased(std::int64_t told, std::optional<std::int64_t> schedulerStart,
                const std::filesystem::path& controlFile) {
  if (!schedulerStart) {
    return false;
  }
  if (*schedulerStart <= told) {
    return true;
  }
  struct stat record {};
  if (controlFile.empty() || ::stat(controlFile.c_str(), &record) != 0) {
    return false;
  }
  const std::int64_t written =
      std::int64_t{record.st_mtim.tv_sec} * millisInSecond + record.st_mtim.tv_nsec / 1'000'000;
  return written >= told + leastDelay && written < *schedulerStart;
}

}  // namespace quordalvane::cups
