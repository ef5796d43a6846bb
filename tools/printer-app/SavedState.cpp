#include "tools/printer-app/SavedState.h"

#include <cerrno>
#include <fstream>
#include <mutex>
#include <regex>
#include <string>
#include <system_error>

namespace quordalvane::printer_app {
namespace {

// A line of the file is a job, with its attributes in quotation marks; a quotation mark in a value
// has a backslash before it.
std::string waiting(const std::string& line) {
  // Held, processing or stopped.
  static const std::regex processing(" state=\"[" + std::to_string(IPP_JSTATE_HELD) + "-" +
                                     std::to_string(IPP_JSTATE_STOPPED) + "]\"");
  static const std::regex since(" processing=\"[0-9]+\"");
  if (!std::regex_search(line, processing)) {
    return line;
  }
  const std::string state = " state=\"" + std::to_string(IPP_JSTATE_PENDING) + "\"";
  return std::regex_replace(std::regex_replace(line, processing, state), since, "");
}

// The path of a file until it replaces the other.
std::filesystem::path nextTo(const std::filesystem::path& file) {
  return file.string() + ".next";
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
