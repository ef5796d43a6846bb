#include "backends/posix/LinkSession.h"

#include <utility>

namespace quordalvane::posix {
namespace {

// The common part of both directions. These streams report no events, so a delegate is never
// called. Scheduling a stream on a run loop has no effect, because a run loop waits only for the
// stream that is passed to `runUntilDate`.
template <typename Stream>
class LinkStream : public Stream {
 public:
  explicit LinkStream(std::shared_ptr<Link> link) : link_(std::move(link)) {}

  void setDelegate(std::weak_ptr<const void> /*delegate*/) override {}
  void scheduleInRunLoop(NSRunLoop& /*runLoop*/, std::string_view /*mode*/) override {}
  void removeFromRunLoop(NSRunLoop& /*runLoop*/, std::string_view /*mode*/) override {}
  void open() override {}
  void close() override { link_ = nullptr; }

 protected:
  std::shared_ptr<Link> link_;  // null after `close`
};

class LinkInputStream final : public LinkStream<NSInputStream> {
 public:
  using LinkStream::LinkStream;

  bool hasBytesAvailable() override { return link_ && link_->hasBytes(); }
  bool expectsBytes() override { return link_ && link_->expectsBytes(); }

  std::int64_t read(std::uint8_t* buffer, std::size_t maxLength) override {
    return link_ ? link_->read(buffer, maxLength) : -1;
  }

  void waitUntilReady(double seconds) override {
    if (link_) {
      link_->waitForBytes(seconds);
    }
  }
};

class LinkOutputStream final : public LinkStream<NSOutputStream> {
 public:
  using LinkStream::LinkStream;

  bool hasSpaceAvailable() override { return link_ && link_->hasSpace(); }

  void setMayBeAnswered(bool mayBeAnswered) override {
    if (link_) {
      link_->setMayBeAnswered(mayBeAnswered);
    }
  }

  std::int64_t write(const std::uint8_t* buffer, std::size_t maxLength) override {
    return link_ ? link_->write(buffer, maxLength) : -1;
  }

  void waitUntilReady(double seconds) override {
    if (link_) {
      link_->waitForSpace(seconds);
    }
  }
};

}  // namespace

LinkSession::LinkSession(std::shared_ptr<Link> link)
    : link_(std::move(link)),
      input_(std::make_shared<LinkInputStream>(link_)),
      output_(std::make_shared<LinkOutputStream>(link_)) {}

LinkSession::~LinkSession() {
  link_->release();
}

}  // namespace quordalvane::posix
