#include "locks/DeviceLock.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <system_error>

namespace quordalvane {
namespace {

constexpr unsigned everyUser = 0666;
constexpr unsigned thisUser = 0600;
constexpr mode_t thisUsersFolder = 0700;

// Returns whether every user may create files in this folder, and no user may remove the files of
// another.
bool isShared(const std::filesystem::path& folder) {
  struct stat found = {};
  return ::stat(folder.c_str(), &found) == 0 && S_ISDIR(found.st_mode) &&
         (found.st_mode & S_IWOTH) != 0 && (found.st_mode & S_ISVTX) != 0 &&
         ::access(folder.c_str(), W_OK | X_OK) == 0;
}

// Returns this user's private folder. Throws if the folder belongs to another user: that user may
// have created the folder to read the files in it.
std::filesystem::path privateFolder() {
  const char* const temporary = std::getenv("TMPDIR");
  std::filesystem::path folder =
      std::filesystem::path(temporary == nullptr || *temporary == '\0' ? "/tmp" : temporary) /
      ("quorport-" + std::to_string(::geteuid()));
  struct stat found = {};
  if (::mkdir(folder.c_str(), thisUsersFolder) != 0 && errno != EEXIST) {
    throw std::system_error(errno, std::generic_category(), folder.string());
  }
  if (::lstat(folder.c_str(), &found) != 0 || !S_ISDIR(found.st_mode) ||
      found.st_uid != ::geteuid()) {
    throw std::system_error(EPERM, std::generic_category(), folder.string());
  }
  return folder;
}

constexpr auto sharedFolder = "/run/lock";
constexpr auto fileName = "quorport.locks";

}  // namespace

std::filesystem::path deviceLockFile(const std::filesystem::path& shared) {
  if (isShared(shared)) {
    return shared / fileName;
  }
  const char* const runtime = std::getenv("XDG_RUNTIME_DIR");
  return (runtime != nullptr && *runtime == '/' ? std::filesystem::path(runtime)
                                                : privateFolder()) /
         fileName;
}

std::filesystem::path deviceLockFile() {
  return deviceLockFile(sharedFolder);
}

std::optional<ByteLock> takeDevice(std::string_view identity, std::chrono::milliseconds limit,
                                   const std::function<void()>& onWait) {
  const auto file = deviceLockFile();
  const unsigned mode = file.parent_path() == sharedFolder ? everyUser : thisUser;
  return ByteLock::take(file, lockOffset(identity), mode, limit, onWait);
}

}  // namespace quordalvane
