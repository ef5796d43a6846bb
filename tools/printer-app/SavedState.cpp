#include "tools/printer-app/SavedState.h"

#include <cerrno>
#include <fstream>
#include <map>
#include <mutex>
#include <regex>
#include <string>
#include <system_error>
#include <utility>

#include "tools/printer-app/JobOrder.h"

namespace quordalvane::printer_app {
namespace {

// A job is one line of the file, with its attributes in quotation marks. A backslash escapes a
// quotation mark in a value.
std::regex patternOf(const std::string& name) {
  return std::regex(" " + name + "=\"([0-9]{1,9})\"");
}

// Returns 0 if the line does not contain the attribute.
int valueIn(const std::string& line, const std::string& name) {
  std::smatch found;
  return std::regex_search(line, found, patternOf(name)) ? std::stoi(found[1]) : 0;
}

std::string waiting(const std::string& line) {
  const int state = valueIn(line, "state");
  const bool isUnderWay = state == IPP_JSTATE_PROCESSING || state == IPP_JSTATE_STOPPED;
  const auto reasons = static_cast<pappl_jreason_t>(valueIn(line, "state_reasons"));
  if (!isUnderWay && !isHeldForItsTurn(static_cast<ipp_jstate_t>(state), reasons)) {
    return line;
  }
  const std::string pending = " state=\"" + std::to_string(IPP_JSTATE_PENDING) + "\"";
  return std::regex_replace(std::regex_replace(line, patternOf("state"), pending),
                            patternOf("processing"), "");
}

// Returns the path under which the new file is written before it replaces `file`.
std::filesystem::path nextTo(const std::filesystem::path& file) {
  return file.string() + ".next";
}

// The states of the unfinished jobs, by the names of the jobs' files. The name is "" while a job
// arrives.
using JobStates = std::multimap<std::string, std::pair<ipp_jstate_t, pappl_jreason_t>>;

void note(pappl_job_t* job, void* states) {
  const char* const file = papplJobGetFilename(job);
  static_cast<JobStates*>(states)->emplace(
      file == nullptr ? "" : file, std::pair(papplJobGetState(job), papplJobGetReasons(job)));
}

}  // namespace

bool saveState(pappl_system_t* system, const std::filesystem::path& file) {
  static std::mutex mutex;
  const std::scoped_lock lock(mutex);
  const std::filesystem::path next = nextTo(file);
  std::error_code error;
  if (papplSystemSaveState(system, next.c_str())) {
    std::filesystem::rename(next, file, error);
    return !error;
  }
  return false;
}

void saveChangedJobs(pappl_system_t* system, const std::filesystem::path& file) {
  static std::mutex mutex;
  static JobStates saved;
  JobStates now;
  papplSystemIteratePrinters(
      system,
      [](pappl_printer_t* printer, void* states) {
        papplPrinterIterateActiveJobs(printer, note, states, 1, 0);
      },
      &now);
  const std::scoped_lock lock(mutex);
  if (now != saved && saveState(system, file)) {
    saved = std::move(now);
  }
}

void letJobsWaitAgain(const std::filesystem::path& file) {
  std::ifstream in(file);
  if (!in) {
    return;
  }
  std::string lines;
  for (std::string line; std::getline(in, line);) {
    lines += (line.starts_with("Job ") ? waiting(line) : line) + '\n';
  }
  const std::filesystem::path next = nextTo(file);
  std::ofstream out(next, std::ios::trunc);
  out << lines;
  out.close();
  if (!out) {
    throw std::system_error(EIO, std::generic_category(), next.string());
  }
  std::filesystem::rename(next, file);
}

}  // namespace quordalvane::printer_app
