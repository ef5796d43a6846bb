#include <chrono>

#include "fuzz/Input.h"
#include "simulator/PrinterBuilder.h"
#include "simulator/PrinterLink.h"
#include "simulator/TextRendering.h"

using namespace quordalvane;
using namespace std::chrono_literals;
using fuzz::require;

namespace {

class Host {
 public:
  Host(std::uint32_t speed, std::string_view proofs)
      : printer_(
            simulator::PrinterBuilder().speed(speed).set("proofs", proofs).keepPrinted().state()),
        link_(printer_, 0s) {}

  void send(std::span<const std::uint8_t> bytes) {
    const std::size_t space = link_.space(now_);
    const std::size_t taken = link_.write(bytes, now_);
    require(taken == std::min(space, bytes.size()) || space == 0);
    fuzz::Bytes reply(link_.available(now_));
    require(link_.read(reply, now_) == reply.size());
    replies_.insert(replies_.end(), reply.begin(), reply.end());
    require(printer_.printedBytes() + printer_.buffered() <= (sent_ += taken));
  }

  void wait(simulator::Instant time) { now_ += time; }

  const fuzz::Bytes& replies() const { return replies_; }
  const simulator::VirtualPrinter& printer() const { return printer_; }

 private:
  simulator::VirtualPrinter printer_;
  simulator::PrinterLink link_;
  simulator::Instant now_ = 0s;
  fuzz::Bytes replies_;
  std::size_t sent_ = 0;
};

void check(std::span<const std::uint8_t> bytes, std::string_view proofs) {
  Host whole(0, proofs);
  whole.send(bytes);
  Host single(0, proofs);
  Host slow(200, proofs);
  for (const std::uint8_t byte : bytes) {
    single.send({&byte, 1});
    slow.send({&byte, 1});
    slow.wait(3ms);
  }
  require(whole.replies() == single.replies());
  require(whole.printer().printed() == single.printer().printed());
  const std::string text = renderText(whole.printer().paper());
  require(text == renderText(single.printer().paper()));
}

}  // namespace

/// A host sends arbitrary bytes, first in one piece, then byte by byte; the replies and the paper
/// must be the same. A slow printer must accept all bytes, and print no more than was sent. All of
/// this must also be true for a printer that does not support the checked block.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::span<const std::uint8_t> bytes(data, size);
  check(bytes, "block+process-id+in-order");
  check(bytes, "process-id+in-order");
  return 0;
}
