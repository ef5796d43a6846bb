#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>

#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "job/ByteView.h"
#include "job/Setback.h"

namespace quordalvane {

/// Gives jobs and inquiries access to a port. Every wait has a limit and can be cancelled, and
/// every byte is counted. A PortLink is the only observer of its port while it exists.
class PortLink final : private TransferObserver {
 public:
  /// Thrown by an operation of the port after `cancelled` has become true.
  struct Cancelled {};

  /// Thrown by an operation of the port if the operation took too long or the link is lost.
  struct GivenUp {};

  using Reply = ExternalAccessoryPort::Reply;

  /// Called each time that the link has taken some bytes.
  using Progress = std::function<void()>;

  /// When `cancelled` becomes true, every operation throws Cancelled. `cancelled` must outlive this
  /// object.
  PortLink(std::shared_ptr<ExternalAccessoryPort> port, const std::atomic<bool>& cancelled);
  ~PortLink() override;
  PortLink(const PortLink&) = delete;
  PortLink& operator=(const PortLink&) = delete;

  ExternalAccessoryPort& port() const { return *port_; }
  std::chrono::nanoseconds now() const { return port_->platform().clock().monotonic(); }

  /// Returns the port's input/output time-out, but at least one second.
  std::chrono::milliseconds timeout() const;

  /// Passes all bytes to `listener` from now on, or to nobody if `listener` is null. The listener
  /// must exist until the next call of this function.
  void setListener(TransferObserver* listener) { listener_ = listener; }

  /// Calls `operation` and returns its result. A read or write of the operation throws GivenUp if
  /// `limit` has passed. A read that fails throws GivenUp even before `limit` has passed. If calls
  /// are nested, the earliest limit applies.
  template <typename Operation>
  auto within(std::chrono::nanoseconds limit, Operation operation) {
    const Limited limited(*this, now() + limit);
    return operation();
  }

  /// Throws Cancelled if the job was cancelled, or GivenUp if the time limit has passed.
  void goOn() const;

  /// Ignores a cancel from now on, so that the last commands of a cancelled job can be sent.
  void ignoreCancel() { isCancelIgnored_ = true; }

  /// Sends all of `data`, each byte once, and counts in `accepted` how many bytes the link took.
  /// Returns null when the link has taken all bytes. Returns a setback with the reason if the link
  /// is lost, a write fails, or the link takes no byte for as long as the time-out. `reply` says
  /// whether the printer may answer the data.
  MaybeSetback move(ByteView data, std::uint64_t& accepted, const Progress& progress = {},
                    Reply reply = Reply::Possible);

  /// Sends a short command, which does not count as data of the job.
  MaybeSetback send(ByteView command, Reply reply = Reply::Possible);

  /// Sleeps for a moment. Called between two attempts on a link that has no bytes or no space.
  void pause();

  /// Reads until `isDone` returns true. `isDone` is called once without bytes, and then with the
  /// bytes of each read. Returns false if `limit` passes or the link is lost before `isDone`
  /// returns true.
  bool await(const std::function<bool(ByteView)>& isDone, std::chrono::nanoseconds limit);

  /// Drops the received bytes that nobody has read, and waits for more only if an answer may still
  /// arrive. `drain` stops after one second or one mebibyte, even if the printer never stops
  /// sending.
  void drain();

  /// Returns whether the link is lost. First drops the received bytes that nobody has read. While
  /// there are such bytes, the port reports even a lost link as connected.
  bool isLost();

  /// Returns the setback for an exchange that failed. If the link is lost, the reason in the
  /// setback is "link lost". If the link is not lost, the reason is the text in `otherwise`.
  Setback failedExchange(const std::string& otherwise);

 private:
  /// While this object exists, the link has a deadline.
  class Limited {
   public:
    Limited(PortLink& link, std::chrono::nanoseconds deadline);
    ~Limited() { link_.deadline_ = before_; }
    Limited(const Limited&) = delete;
    Limited& operator=(const Limited&) = delete;

   private:
    PortLink& link_;
    const std::chrono::nanoseconds before_;
  };

  static constexpr auto noDeadline = std::chrono::nanoseconds::max();

  void bytesWritten(ByteView bytes) override;
  void bytesRead(ByteView bytes) override;
  void readFailed() override;

  const std::shared_ptr<ExternalAccessoryPort> port_;
  const std::atomic<bool>& cancelled_;
  bool isCancelIgnored_ = false;
  TransferObserver* listener_ = nullptr;
  std::uint64_t* accepted_ =
      nullptr;  // counts the sent bytes of the data; null if nothing is being sent
  std::chrono::nanoseconds deadline_ = noDeadline;
};

}  // namespace quordalvane
