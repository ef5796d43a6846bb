#pragma once

#include <memory>

#include "backends/posix/Link.h"
#include "platform/EAAccessory.h"

namespace quordalvane::posix {

/// A session over a link. The link is connected before the session exists, so the session's streams
/// are open from the start. The streams may outlive the session; after the session's end they have
/// no bytes to read and no space to write.
class LinkSession : public EASession {
 public:
  explicit LinkSession(std::shared_ptr<Link> link);
  ~LinkSession() override;

  std::shared_ptr<NSInputStream> inputStream() override { return input_; }
  std::shared_ptr<NSOutputStream> outputStream() override { return output_; }
  void abandon() override { link_->abandon(); }

 private:
  const std::shared_ptr<Link> link_;
  const std::shared_ptr<NSInputStream> input_;
  const std::shared_ptr<NSOutputStream> output_;
};

}  // namespace quordalvane::posix
