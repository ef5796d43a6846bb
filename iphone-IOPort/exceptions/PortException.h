#pragma once

#include <exception>
#include <string>
#include <utility>

#include <quordalvane/QuorExport.h>

namespace quordalvane {

/// Thrown if an exchange with the printer must be abandoned. It carries no user information.
class QUOR_EXPORT PortException : public std::exception {
 public:
  /// `reason` says, for a person, why the exchange was abandoned.
  explicit PortException(std::string reason) : reason_(std::move(reason)) {}

  /// The name of the kind of exception, always the same, and the reason of this one. Both are the
  /// exception's own and valid as long as it.
  /// @{
  const char* name() const noexcept { return "PortException"; }
  const std::string& reason() const noexcept { return reason_; }
  /// @}

  /// The reason.
  const char* what() const noexcept override { return reason_.c_str(); }

 private:
  std::string reason_;
};

}  // namespace quordalvane
