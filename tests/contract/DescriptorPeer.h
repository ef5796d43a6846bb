#pragma once

#include "tests/contract/LinkMaker.h"

namespace quordalvane::contract {

/// The device's end of a link, if this end is a file descriptor. It takes bytes only in `read`.
class DescriptorPeer : public Peer {
 public:
  /// `number` is the descriptor. It must be in blocking mode. The peer closes it.
  explicit DescriptorPeer(int number) : number_(number) {}
  ~DescriptorPeer() override { close(); }

  void write(const Bytes& bytes) override;
  void say(std::uint8_t byte) override;
  Bytes read(std::size_t count) override;
  void stall() override {}
  void close() override;
  void closeWriting() override;
  void reset() override;

 private:
  int number_;
};

}  // namespace quordalvane::contract
