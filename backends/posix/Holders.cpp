#include "backends/posix/Holders.h"

#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <set>
#include <sstream>

#include "backends/posix/SystemFiles.h"
#include "text/Number.h"

namespace quordalvane::posix {
namespace {

namespace fs = std::filesystem;

const fs::path processes = "/proc";

bool isSameFile(const struct stat& one, const struct stat& other) {
  return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

bool hasOpen(const fs::path& process, const struct stat& file) {
  const std::vector<fs::path> descriptors = entriesOf(process / "fd");
  return std::any_of(descriptors.begin(), descriptors.end(), [&file](const fs::path& entry) {
    struct stat opened {};
    return ::stat(entry.c_str(), &opened) == 0 && isSameFile(opened, file);
  });
}

void addThoseThatHaveItOpen(const struct stat& file, std::set<pid_t>& found) {
  for (const fs::path& entry : entriesOf(processes)) {
    const auto process = numberIn<pid_t>(entry.filename().string());
    if (process && hasOpen(entry, file)) {
      found.insert(*process);
    }
  }
}

// Adds the processes that hold a lock on the file. The system lists each lock in one line, with the
// device in hex: "1: FLOCK ADVISORY WRITE 412 00:05:337 0 EOF".
void addThoseThatLockedIt(const struct stat& file, std::set<pid_t>& found) {
  std::ifstream locks(processes / "locks");
  std::ostringstream device;
  device << std::hex;
  device.width(2);
  device.fill('0');
  device << major(file.st_dev) << ':';
  device.width(2);
  device << minor(file.st_dev) << ':' << std::dec << file.st_ino;
  for (std::string line; std::getline(locks, line);) {
    std::istringstream words(line);
    std::string number, kind, mode, access, inode;
    pid_t process = 0;
    if (words >> number >> kind >> mode >> access >> process >> inode && inode == device.str()) {
      found.insert(process);
    }
  }
}

std::string nameOf(pid_t process) {
  std::ifstream file(processes / std::to_string(process) / "comm");
  std::string name;
  std::getline(file, name);
  return name.empty() ? "a program" : name;
}

}  // namespace

std::vector<pid_t> holdersOf(const std::string& path) {
  struct stat file {};
  std::set<pid_t> found;
  if (::stat(path.c_str(), &file) == 0) {
    addThoseThatHaveItOpen(file, found);
    addThoseThatLockedIt(file, found);
  }
  found.erase(::getpid());
  return {found.begin(), found.end()};
}

std::string holderInWords(const std::string& path) {
  std::string text;
  for (const pid_t process : holdersOf(path)) {
    text += (text.empty() ? ": " : ", ") + nameOf(process) + " (process " +
            std::to_string(process) + ")";
  }
  return "another program" + text;
}

}  // namespace quordalvane::posix
