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

  /// To be called if the host has left but the line is still in use: from now on the listener
  /// reports the next host.
  virtual void noteHostEnded() {}

  /// Sends the host an end of data, if this kind of line can do so.
  virtual void endOutput() = 0;

  /// To be called after `endOutput`, every few milliseconds. Returns true after the host has read
  /// everything: the line can then be closed, and no byte is lost. May discard bytes that the host
  /// still sends. Does not wait.
  virtual bool hasSettled() = 0;

  /// After this call, closing the line resets the connection, if this kind of line can do so.
  virtual void resetOnClose() = 0;

  /// Returns true if the host has reset the connection.
  virtual bool wasReset() const = 0;

 private:
  posix::Descriptor descriptor_;
};

}  // namespace quordalvane::tool
