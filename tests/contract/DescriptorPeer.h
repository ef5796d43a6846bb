#pragma once

#include "tests/contract/LinkMaker.h"

namespace quordalvane::contract {

/// The other side of a link over a descriptor. It takes bytes only in `read`.
class DescriptorPeer : public Peer {
 public:
  /// Takes over `number`, in blocking mode.
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
