#pragma once

#include <memory>
#include <string>

#include "tools/quorport/Json.h"
#include "tools/quorport/LogOutput.h"
#include "tools/quorport/Options.h"

namespace quordalvane::tool {

/// The file for support: versions, the options, the findings, and the diagnostic records of the
/// whole examination, as one JSON object. Records are gathered as long as this lives.
class Bundle {
 public:
  /// Throws a CommandFailure with ExitCode::Usage if there is such a file already, or there cannot
  /// be one.
  explicit Bundle(const Options& options);
  ~Bundle();
  Bundle(const Bundle&) = delete;
  Bundle& operator=(const Bundle&) = delete;

  /// Writes the file, which only its owner may read. Returns "", or why it could not be written; it
  /// is not there then. To be called once; nothing is gathered any more.
  std::string write(const Json& findings);

 private:
  class Records;

  const Options& options_;
  const std::string path_;
  const std::shared_ptr<Records> records_;
  std::optional<Recording> recording_;
};

}  // namespace quordalvane::tool
