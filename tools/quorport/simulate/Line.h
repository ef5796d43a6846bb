#pragma once

#include <memory>
#include <utility>

#include "backends/posix/Descriptor.h"

namespace quordalvane::tool {

/// The printer's end of a connection to one host.
class Line {
 public:
  explicit Line(posix::Descriptor descriptor) : descriptor_(std::move(descriptor)) {}
  virtual ~Line() = default;
  Line(const Line&) = delete;
  Line& operator=(const Line&) = delete;

  const posix::Descriptor& descriptor() const { return descriptor_; }

  /// To be called after the host's first bytes have arrived.
  virtual void noteHost() {}

  /// To be called when the host has left and the line is kept all the same: from now on the
  /// listener shows the next one.
  virtual void noteHostEnded() {}

  /// Tells the host that no bytes follow, if the line has a way to.
  virtual void endOutput() = 0;

  /// After `endOutput`: whether the host has taken everything, so that closing loses nothing. To be
  /// asked again and again, some milliseconds apart. Later bytes of the host are thrown away. Does
  /// not wait.
  virtual bool hasSettled() = 0;

  /// Makes the closing a reset, if the line has a way to.
  virtual void resetOnClose() = 0;

  /// Whether the host has reset the connection.
  virtual bool wasReset() const = 0;

 private:
  posix::Descriptor descriptor_;
};

}  // namespace quordalvane::tool
