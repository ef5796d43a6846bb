#include "tools/cups-backend/BackEndJob.h"

#include <algorithm>
#include <random>
#include <sstream>
#include <stdexcept>

#include "journal/Journal.h"
#include "text/Number.h"
#include "text/Quoted.h"

namespace quordalvane::cups {
namespace {

constexpr std::size_t leastArguments = 6;
constexpr std::size_t mostArguments = 7;
constexpr unsigned mostCopies = 9999;

// Returns the value of `key` in the options, which are separated by blanks; "" if it is missing.
std::string option(const std::string& options, const std::string& key) {
  std::istringstream words(options);
  for (std::string word; words >> word;) {
    if (word.starts_with(key + "=")) {
      return word.substr(key.size() + 1);
    }
  }
  return "";
}

// The name must be unique, because the journal treats two jobs with the same name as one job.
std::string randomName() {
  std::random_device dice;
  std::string name = "unnamed job ";
  for (int i = 0; i < 4; ++i) {
    name += std::to_string(dice());
  }
  return name;
}

unsigned copiesIn(const std::string& text) {
  const auto copies = numberIn<unsigned>(text);
  if (!copies || *copies == 0 || *copies > mostCopies) {
    throw std::invalid_argument("copies " + inQuotes(text) + ": takes 1 to 9999");
  }
  return *copies;
}

std::filesystem::path journalOf(const std::string& cache) {
  return cache.empty() ? Journal::defaultFile() : std::filesystem::path(cache) / "quor/jobs.db";
}

// The scheduler pads the number to at least five digits.
std::filesystem::path controlFileOf(const std::string& spool, const std::string& number) {
  if (spool.empty()) {
    return {};
  }
  constexpr std::size_t digits = 5;
  return std::filesystem::path(spool) /
         ("c" + std::string(digits - std::min(digits, number.size()), '0') + number);
}

}  // namespace

BackEndJob parseBackEndJob(const std::vector<std::string>& arguments,
                           const std::function<std::string(const char*)>& variable) {
  if (arguments.size() < leastArguments || arguments.size() > mostArguments) {
    throw std::invalid_argument(
        "usage: quor JOB USER TITLE COPIES OPTIONS [FILE], as the print "
        "system starts it; without arguments it lists printers");
  }
  const std::string& options = arguments[5];
  BackEndJob job;
  job.uri = variable("DEVICE_URI");
  if (job.uri.empty()) {
    job.uri = arguments[0];
  }
  job.number = arguments[1];
  job.name = option(options, "job-uuid");
  if (job.name.empty()) {
    job.name = randomName();
  }
  job.ended = numberIn<std::int64_t>(option(options, "time-at-completed"));
  if (arguments.size() == mostArguments) {
    job.file = arguments[6];
    job.copies = copiesIn(arguments[4]);
  }
  job.isOfClass = !variable("CLASS").empty();
  job.standingReasons = variable("PRINTER_STATE_REASONS");
  job.journal = journalOf(variable("CUPS_CACHEDIR"));
  job.controlFile = controlFileOf(variable("CUPS_REQUESTROOT"), job.number);
  return job;
}

}  // namespace quordalvane::cups
