#include "tests/journal/FaultyStorage.h"

#include <sqlite3.h>

#include <cstdlib>
#include <cstring>
#include <limits>

namespace quordalvane::test {
namespace {

sqlite3_vfs* system = nullptr;
std::uint64_t made = 0;
std::uint64_t firstFailing = 0;
std::uint64_t lastFailing = 0;

bool failsNow() {
  ++made;
  return made >= firstFailing && made <= lastFailing;
}

struct File {
  sqlite3_file base;
  sqlite3_file* real;
};

sqlite3_file* real(sqlite3_file* file) {
  return reinterpret_cast<File*>(file)->real;
}

// Calls the same method of the real file.
template <auto Method, typename... Arguments>
auto forwarded(sqlite3_file* file, Arguments... arguments) {
  return (real(file)->pMethods->*Method)(real(file), arguments...);
}

// Calls the same method of the real file, or fails with `Code` if this call must fail.
template <auto Method, int Code, typename... Arguments>
int failing(sqlite3_file* file, Arguments... arguments) {
  return failsNow() ? Code : forwarded<Method>(file, arguments...);
}

int closeFile(sqlite3_file* file) {
  const int code = real(file)->pMethods->xClose(real(file));
  std::free(real(file));
  return code;
}

const sqlite3_io_methods methods = {
    3,
    closeFile,
    forwarded<&sqlite3_io_methods::xRead>,
    failing<&sqlite3_io_methods::xWrite, SQLITE_FULL>,
    failing<&sqlite3_io_methods::xTruncate, SQLITE_IOERR_TRUNCATE>,
    failing<&sqlite3_io_methods::xSync, SQLITE_IOERR_FSYNC>,
    forwarded<&sqlite3_io_methods::xFileSize>,
    forwarded<&sqlite3_io_methods::xLock>,
    forwarded<&sqlite3_io_methods::xUnlock>,
    forwarded<&sqlite3_io_methods::xCheckReservedLock>,
    forwarded<&sqlite3_io_methods::xFileControl>,
    forwarded<&sqlite3_io_methods::xSectorSize>,
    forwarded<&sqlite3_io_methods::xDeviceCharacteristics>,
    failing<&sqlite3_io_methods::xShmMap, SQLITE_IOERR_SHMMAP>,
    forwarded<&sqlite3_io_methods::xShmLock>,
    forwarded<&sqlite3_io_methods::xShmBarrier>,
    forwarded<&sqlite3_io_methods::xShmUnmap>,
    forwarded<&sqlite3_io_methods::xFetch>,
    forwarded<&sqlite3_io_methods::xUnfetch>,
};

int openFile(sqlite3_vfs* /*vfs*/, const char* name, sqlite3_file* file, int flags, int* outFlags) {
  auto* const opened = reinterpret_cast<File*>(file);
  opened->base.pMethods = nullptr;
  if (failsNow()) {
    return SQLITE_CANTOPEN;
  }
  opened->real =
      static_cast<sqlite3_file*>(std::calloc(1, static_cast<std::size_t>(system->szOsFile)));
  const int code = system->xOpen(system, name, opened->real, flags, outFlags);
  if (opened->real->pMethods == nullptr) {
    std::free(opened->real);
  } else {
    opened->base.pMethods = &methods;
  }
  return code;
}

sqlite3_vfs layer = {};

}  // namespace

FaultyStorage::FaultyStorage(std::uint64_t failing, bool andAllLater) {
  system = sqlite3_vfs_find(nullptr);
  made = 0;
  firstFailing = failing == 0 ? std::numeric_limits<std::uint64_t>::max() : failing;
  lastFailing = andAllLater ? std::numeric_limits<std::uint64_t>::max() : firstFailing;
  layer = *system;
  layer.szOsFile = sizeof(File);
  layer.zName = "faulty";
  layer.xOpen = openFile;
  sqlite3_vfs_register(&layer, 1);
}

FaultyStorage::~FaultyStorage() {
  sqlite3_vfs_unregister(&layer);
  sqlite3_vfs_register(system, 1);
}

std::uint64_t FaultyStorage::calls() const {
  return made;
}

}  // namespace quordalvane::test
