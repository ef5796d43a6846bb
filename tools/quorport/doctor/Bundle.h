#pragma once

#include <memory>
#include <string>

#include "tools/quorport/Json.h"
#include "tools/quorport/LogOutput.h"
#include "tools/quorport/Options.h"

namespace quordalvane::tool {

/// A file for support staff. It is one JSON object with the versions, the options, the findings and
/// the diagnostic records of the whole examination. A bundle collects the records during its
/// lifetime.
class Bundle {
 public:
  /// Throws a CommandFailure with ExitCode::Usage if the file exists already or cannot be created.
  explicit Bundle(const Options& options);
  ~Bundle();
  Bundle(const Bundle&) = delete;
  Bundle& operator=(const Bundle&) = delete;

  /// Stops collecting, and writes the file, which only its owner may read. Returns "" on success.
  /// On a failure, returns the reason and leaves no file. To be called once.
  std::string write(const Json& findings);

 private:
  class Records;

  const Options& options_;
  const std::string path_;
  const std::shared_ptr<Records> records_;
  std::optional<Recording> recording_;
};

}  // namespace quordalvane::tool
