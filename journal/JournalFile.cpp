#include "journal/JournalFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <system_error>

#include "journal/Database.h"
#include "journal/JournalError.h"
#include "journal/Schema.h"

namespace quordalvane {
namespace {

constexpr mode_t ownFile = 0600;
constexpr mode_t ownFolder = 0700;

struct NetworkFileSystem {
  unsigned long type;
  std::string_view name;
};

constexpr NetworkFileSystem networkFileSystems[] = {
    {0x6969, "NFS"},      {0x517b, "SMB"},        {0xff534d42, "CIFS"}, {0xfe534d42, "SMB2"},
    {0x5346414f, "AFS"},  {0x6b414653, "kAFS"},   {0x73757245, "Coda"}, {0x01021997, "9P"},
    {0x00c36400, "Ceph"}, {0x0bd00bd0, "Lustre"}, {0x564c, "NCP"},      {0x7461636f, "OCFS2"},
    {0x01161970, "GFS2"},
};

[[noreturn]] void fail(const std::filesystem::path& file, const std::string& what) {
  throw JournalError(file, what + ": " + std::generic_category().message(errno));
}

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) {
      ::close(number_);
    }
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int number() const { return number_; }

 private:
  const int number_;
};

// Writes the names in the folder to disk. Without this function, a power failure could remove the
// name of a new file. Nobody could then find the data of the file.
void syncFolder(const std::filesystem::path& folder, const std::filesystem::path& file) {
  const Descriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (opened.number() < 0 || ::fsync(opened.number()) != 0) {
    fail(file, "the file names in its folder cannot be written to disk");
  }
}

void makeFolder(const std::filesystem::path& folder, const std::filesystem::path& file) {
  struct stat found = {};
  if (folder.empty() || ::stat(folder.c_str(), &found) == 0) {
    return;
  }
  makeFolder(folder.parent_path(), file);
  if (::mkdir(folder.c_str(), ownFolder) == 0) {
    syncFolder(folder.has_parent_path() ? folder.parent_path() : ".", file);
  } else if (errno != EEXIST) {
    fail(file, "its folder cannot be created");
  }
}

void removeIfThere(const std::filesystem::path& file, const std::filesystem::path& journal) {
  if (::unlink(file.c_str()) != 0 && errno != ENOENT) {
    fail(journal, "a file of an earlier attempt to create the journal cannot be removed");
  }
}

void makeEmptyFile(const std::filesystem::path& file, const std::filesystem::path& journal) {
  const Descriptor made(::open(file.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, ownFile));
  if (made.number() < 0) {
    fail(journal, "it cannot be created");
  }
}

void refuseNetwork(const std::filesystem::path& file) {
  struct statfs found = {};
  if (::statfs(file.c_str(), &found) != 0) {
    fail(file, "the kind of its file system cannot be read");
  }
  if (const auto name = networkFileSystem(static_cast<unsigned long>(found.f_type))) {
    throw JournalError(file,
                       "it lies on a network file system (" + std::string(*name) +
                           "), on which locks do not hold; it must be on a disk of this machine");
  }
}

// The locks and the database's own log are files beside the journal, and are named after it. If two
// processes used two names of one journal, neither would see the locks and the log of the other.
void refuseSecondName(const std::filesystem::path& file) {
  struct stat found = {};
  if (::stat(file.c_str(), &found) == 0 && S_ISREG(found.st_mode) && found.st_nlink > 1) {
    throw JournalError(file, "it has a second name (a hard link); remove that name");
  }
}

}  // namespace

std::optional<std::string_view> networkFileSystem(unsigned long type) {
  for (const auto& known : networkFileSystems) {
    if (known.type == (type & 0xffffffff)) {
      return known.name;
    }
  }
  return std::nullopt;
}

std::filesystem::path preparedPath(const std::filesystem::path& file) {
  if (file.empty()) {
    throw JournalError(file, "its name is empty");
  }
  try {
    auto whole = std::filesystem::weakly_canonical(std::filesystem::absolute(file));
    makeFolder(whole.parent_path(), whole);
    refuseNetwork(whole.parent_path());
    refuseSecondName(whole);
    return whole;
  } catch (const std::filesystem::filesystem_error& error) {
    throw JournalError(file, error.code().message());
  }
}

void makeJournal(const std::filesystem::path& file) {
  const std::filesystem::path unfinished = file.string() + ".new";
  for (const char* const part : {"", "-wal", "-shm", "-journal"}) {
    removeIfThere(unfinished.string() + part, file);
  }
  makeEmptyFile(unfinished, file);
  {
    Database database(unfinished);
    makeTables(database);
  }
  if (::rename(unfinished.c_str(), file.c_str()) != 0) {
    fail(file, "it cannot be created");
  }
  syncFolder(file.parent_path(), file);
}

std::filesystem::path lockFileOf(const std::filesystem::path& journal) {
  return journal.string() + ".locks";
}

}  // namespace quordalvane
