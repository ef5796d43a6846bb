#pragma once

#include <cstdint>

namespace quordalvane {

/// Knows whether a reply of the device may still arrive, so that no reader waits for bytes that
/// cannot arrive. The writer says of each write whether the device may answer it. The number of
/// replies is unknown, so in case of doubt this class expects one more reply:
///
/// - A write that cannot be answered changes nothing.
/// - After any other write, a reply is expected until bytes have arrived after this write and the
///   reader has taken all of them.
/// - If a wait after a write receives no bytes, and another write follows, two replies are
///   expected: the next bytes may be the late reply to the first write.
/// - If a wait after a reply takes its full time and receives no bytes, no more replies are
///   expected.
///
/// The class is not thread-safe; the link that owns the object protects it by a lock.
class ReplyExpectation {
 public:
  bool replyMayCome() const { return pending_; }

  /// Sets whether the device can answer the bytes of later writes; initially it can.
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

  /// Records that bytes arrived and that the reader took all of them.
  void ranDryAfterBytes() {
    repliedSinceWrite_ = true;
    silentSinceWrite_ = false;
    if (owed_ > 0) {
      --owed_;
    } else {
      pending_ = false;
    }
  }

  /// Records that a wait for bytes took its full time and no byte arrived.
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
