#pragma once

#include <cstdint>

namespace quordalvane {

/// Knows whether a reply of the device may still be on its way, so that no reader waits for
/// leftovers that cannot arrive. A writer says of each write whether it may be answered. How many
/// answers it gets is not known, so the count errs to the safe side:
///
/// - A write that is never answered changes nothing.
/// - Any other write may be answered until bytes arrived after it and the input ran dry again.
/// - A write that was followed by a silent wait and then by another write remains owed: the next
///   bytes may be its late reply, and the reply to the later write is then still on its way.
/// - A silent wait of a whole slice after a reply settles everything.
///
/// Not thread-safe; the link that owns it guards it.
class ReplyExpectation {
 public:
  bool replyMayCome() const { return pending_; }

  /// Says whether the writes that follow may be answered; until it is called, they may.
  void setMayBeAnswered(bool mayBeAnswered) { mayBeAnswered_ = mayBeAnswered; }
  bool mayBeAnswered() const { return mayBeAnswered_; }

  void wrote() {
    if (!mayBeAnswered_) {
      return;
    }
    if (pending_ && silentSinceWrite_) {
      ++owed_;
    }
    pending_ = true;
    silentSinceWrite_ = false;
    repliedSinceWrite_ = false;
  }

  /// Bytes arrived and all of them have been taken: the input is dry.
  void ranDryAfterBytes() {
    repliedSinceWrite_ = true;
    silentSinceWrite_ = false;
    if (owed_ > 0) {
      --owed_;
    } else {
      pending_ = false;
    }
  }

  /// A wait for bytes ran its full time and brought none.
  void waitedInVain() {
    if (repliedSinceWrite_) {
      pending_ = false;
      owed_ = 0;
    } else {
      silentSinceWrite_ = true;
    }
  }

 private:
  bool mayBeAnswered_ = true;
  bool pending_ = false;
  bool silentSinceWrite_ = false;
  bool repliedSinceWrite_ = false;
  std::uint64_t owed_ = 0;
};

}  // namespace quordalvane
