#pragma once

#include <exception>
#include <string>
#include <utility>

#include <quordalvane/QuorExport.h>

namespace quordalvane {

/// Thrown if an exchange with the printer must be abandoned.
class QUOR_EXPORT PortException : public std::exception {
 public:
  /// `reason` says why the exchange was abandoned, as a text for a person.
  explicit PortException(std::string reason) : reason_(std::move(reason)) {}

  /// `name` is the same for every exception of this class; `reason` says why this exception was
  /// thrown. The exception owns both texts.
  /// @{
  const char* name() const noexcept { return "PortException"; }
  const std::string& reason() const noexcept { return reason_; }
  /// @}

  /// Returns the reason.
  const char* what() const noexcept override { return reason_.c_str(); }

 private:
  std::string reason_;
};

}  // namespace quordalvane
