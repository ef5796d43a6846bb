#include "tools/quorport/doctor/Bundle.h"

#include <fcntl.h>
#include <gnu/libc-version.h>
#include <sys/utsname.h>
#include <unistd.h>
#include <nlohmann/json.hpp>

#include <cerrno>
#include <chrono>
#include <fstream>
#include <utility>

#include "logging/DescriptorOutput.h"
#include "logging/RecordText.h"
#include "text/Quoted.h"
#include "tools/quorport/CommandFailure.h"
#include "tools/quorport/TimeText.h"

namespace quordalvane::tool {
namespace {

// Creates a file that did not exist. Returns its descriptor, or -1 with errno set.
int createNew(const std::string& path) {
  return ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
}

std::string distribution() {
  constexpr std::string_view key = "PRETTY_NAME=";
  std::ifstream file("/etc/os-release");
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with(key)) {
      const std::string value = line.substr(key.size());
      const bool isQuoted = value.size() > 1 && value.front() == '"' && value.back() == '"';
      return isQuoted ? value.substr(1, value.size() - 2) : value;
    }
  }
  return "";
}

Json versions() {
  utsname system{};
  ::uname(&system);
  return {{"quorport", QUOR_VERSION},
          {"system", std::string(system.sysname) + " " + system.release},
          {"machine", system.machine},
          {"distribution", distribution()},
          {"libc", ::gnu_get_libc_version()}};
}

Json jsonOf(const Options& options) {
  static constexpr const char* emulations[] = {"unknown", "line", "escpos"};
  return {{"devices", options.devices},
          {"portName", options.portName},
          {"settings", options.settings},
          {"timeout", options.timeout},
          {"emulation", emulations[options.emulation]}};
}

}  // namespace

class Bundle::Records : public LogSink {
 public:
  void write(std::span<const LogRecord> records) override {
    for (const LogRecord& record : records) {
      std::string line;
      appendJsonLine(line, record);
      all_.push_back(Json::parse(line));
    }
  }

  /// Returns all records. To be called after the last record has been written.
  const Json& all() const { return all_; }

 private:
  Json all_ = Json::array();
};

Bundle::Bundle(const Options& options)
    : options_(options), path_(*options.doctor.bundle), records_(std::make_shared<Records>()) {
  const int file = createNew(path_);
  if (file < 0) {
    throw CommandFailure(ExitCode::Usage,
                         "--bundle: the file " + inQuotes(path_) +
                             " cannot be created: " + std::generic_category().message(errno));
  }
  // The file is removed now and created again at the end, so that an interrupted examination leaves
  // no file.
  ::close(file);
  ::unlink(path_.c_str());
  recording_.emplace(records_, options.logLevels);
}

Bundle::~Bundle() = default;

std::string Bundle::write(const Json& findings) {
  recording_.reset();
  Json bundle = {{"time", utcText(std::chrono::system_clock::now())},
                 {"versions", versions()},
                 {"options", jsonOf(options_)},
                 {"findings", findings},
                 {"log", records_->all()}};
  const int file = createNew(path_);
  if (file < 0) {
    return "the bundle " + inQuotes(path_) +
           " cannot be created: " + std::generic_category().message(errno);
  }
  const WriteOutcome outcome =
      writeAll(file, bundle.dump(1, ' ', false, Json::error_handler_t::replace) + "\n");
  ::close(file);
  if (outcome.error) {
    ::unlink(path_.c_str());
    return "the bundle " + inQuotes(path_) + " cannot be written: " + outcome.error.message();
  }
  return "";
}

}  // namespace quordalvane::tool
