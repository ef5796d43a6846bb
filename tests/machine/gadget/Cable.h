#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

#include "tests/contract/LinkMaker.h"
#include "tests/machine/gadget/UsbGadget.h"

namespace quordalvane::machine {

/// A printer on a USB cable. One thread of a test can act as the printer and the host, because
/// `say` does not wait: the printer's answers are in a queue until the host has taken the earlier
/// answers.
class Cable {
 public:
  explicit Cable(const UsbIdentity& identity)
      : gadget_(identity, "dummy_udc.0"), speaker_([this] { speak(); }) {}
  ~Cable();
  Cable(const Cable&) = delete;
  Cable& operator=(const Cable&) = delete;

  void plugIn() { gadget_.plugIn(); }

  /// Pulls the cable, and forgets the answers that the printer has not sent yet.
  void pull();

  void say(contract::Bytes bytes);

  /// Takes `count` bytes from the host, or those that arrive before the cable is pulled. After a
  /// generous time this function pulls the cable.
  contract::Bytes take(std::size_t count);

 private:
  contract::Bytes takeUntilPulled(std::size_t count);
  void speak();

  UsbGadget gadget_;
  contract::Bytes taken_;  // bytes of a packet that no `take` has asked for yet
  std::mutex mutex_;       // guards the members below
  std::condition_variable changed_;
  std::deque<contract::Bytes> unsaid_;
  bool isOver_ = false;
  std::thread speaker_;
};

}  // namespace quordalvane::machine
