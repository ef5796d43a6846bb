#include "tools/printer-app/SavedState.h"

#include <cerrno>
#include <fstream>
#include <regex>
#include <string>
#include <system_error>
#include <utility>

#include "tools/printer-app/Pappl.h"

namespace quordalvane::printer_app {
namespace {

bool isJob(const std::string& line) {
  return line.starts_with("Job ");
}

// A line of the file is a job, with its attributes in quotation marks; a quotation mark in a value
// has a backslash before it.
std::string waiting(const std::string& line) {
  static const std::regex processing(" state=\"(" + std::to_string(IPP_JSTATE_PROCESSING) + "|" +
                                     std::to_string(IPP_JSTATE_STOPPED) + ")\"");
  static const std::regex since(" processing=\"[0-9]+\"");
  if (!std::regex_search(line, processing)) {
    return line;
  }
  const std::string state = " state=\"" + std::to_string(IPP_JSTATE_PENDING) + "\"";
  return std::regex_replace(std::regex_replace(line, processing, state), since, "");
}

}  // namespace

void letJobsWaitAgain(const std::filesystem::path& file) {
  std::ifstream in(file);
  if (!in) {
    return;
  }
  std::string lines;
  std::string jobs;
  for (std::string line; std::getline(in, line);) {
    if (isJob(line)) {
      jobs.insert(0, waiting(line) + '\n');
    } else {
      lines += std::exchange(jobs, "") + line + '\n';
    }
  }
  lines += jobs;
  // Beside it and then in its place: a process that ends here leaves the whole file.
  const std::filesystem::path next = file.string() + ".next";
  std::ofstream out(next, std::ios::trunc);
  out << lines;
  out.close();
  if (!out) {
    throw std::system_error(EIO, std::generic_category(), next.string());
  }
  std::filesystem::rename(next, file);
}

}  // namespace quordalvane::printer_app
