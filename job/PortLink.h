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

/// A port as jobs and inquiries use it: every wait has a limit, can be cancelled, and every byte is
/// counted. It is the port's only observer as long as it lives.
class PortLink final : private TransferObserver {
 public:
  /// Thrown out of an operation of the port that was cancelled, or took too long.
  /// @{
  struct Cancelled {};
  struct TimeUp {};
  /// @}

  using Reply = ExternalAccessoryPort::Reply;

  /// Reported for each group of bytes that the link took.
  using Progress = std::function<void()>;

  /// `cancelled` makes every operation throw Cancelled once it is true; it must outlive this.
  PortLink(std::shared_ptr<ExternalAccessoryPort> port, const std::atomic<bool>& cancelled);
  ~PortLink() override;
  PortLink(const PortLink&) = delete;
  PortLink& operator=(const PortLink&) = delete;

  ExternalAccessoryPort& port() const { return *port_; }
  std::chrono::nanoseconds now() const { return port_->platform().clock().monotonic(); }

  /// The port's input/output time-out; one below a second counts as a second.
  std::chrono::milliseconds timeout() const;

  /// Lets `listener` see the bytes; null for nobody. It must outlive its use.
  void setListener(TransferObserver* listener) { listener_ = listener; }

  /// Calls `operation` and returns its result; TimeUp leaves it at the next look at the link after
  /// `limit`. An outer limit that ends earlier still holds.
  template <typename Operation>
  auto within(std::chrono::nanoseconds limit, Operation operation) {
    const Limited limited(*this, now() + limit);
    return operation();
  }

  /// Throws Cancelled or TimeUp if there is reason to.
  void goOn() const;

  /// From now on a cancelled job's last commands may be sent.
  void ignoreCancel() { isCancelIgnored_ = true; }

  /// Hands all of `data` to the link, each byte once, and counts in `accepted` how many bytes it
  /// took. Fails when the link is lost or takes nothing for as long as the time-out.
  /// `reply` says whether the printer may answer the data.
  MaybeSetback move(ByteView data, std::uint64_t& accepted, const Progress& progress = {},
                    Reply reply = Reply::Possible);

  /// The same for a short command that is no data of the job.
  MaybeSetback send(ByteView command, Reply reply = Reply::Possible);

  /// Sleeps a little before another look at a silent link.
  void pause();

  /// Reads until `isDone`, which is given the bytes of each read, at first no bytes, returns true.
  /// False if it does not within `limit`, or if the link is lost.
  bool await(const std::function<bool(ByteView)>& isDone, std::chrono::nanoseconds limit);

  /// Throws away the bytes that wait in the input, and waits for more only if an answer may be on
  /// its way. From a printer that never stops sending it takes the bytes of one second, and at most
  /// a mebibyte.
  void drain();

  /// Whether the link is lost. Throws away the bytes that wait in the input: those from before the
  /// loss keep a link connected until they are read.
  bool isLost();

  /// The setback of an exchange that failed: because the link is lost, or as `otherwise` says.
  Setback failedExchange(const std::string& otherwise);

 private:
  /// A deadline for as long as it lives.
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

  void bytesWritten(ByteView bytes) override;
  void bytesRead(ByteView bytes) override;

  const std::shared_ptr<ExternalAccessoryPort> port_;
  const std::atomic<bool>& cancelled_;
  bool isCancelIgnored_ = false;
  TransferObserver* listener_ = nullptr;
  std::uint64_t* accepted_ = nullptr;  // counts the bytes that are being sent; null: no data is
  std::chrono::nanoseconds deadline_ = std::chrono::nanoseconds::max();
};

}  // namespace quordalvane
