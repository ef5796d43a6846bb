#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "c-interface/Failures.h"
#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "job/PrintJob.h"

namespace quordalvane::c {

/// Passes the bytes of a port to functions of the caller. These functions cannot throw, so they
/// return 0 to continue; on any other value this class throws, which stops the operation.
class FunctionObserver : public TransferObserver {
 public:
  FunctionObserver(QuorBytesWritten written, QuorBytesRead read, void* context)
      : written_(written), read_(read), context_(context) {}

  void bytesWritten(std::span<const std::uint8_t> bytes) override {
    if (written_ != nullptr) {
      goOnIf(written_(context_, bytes.size()) == 0);
    }
  }
  void bytesRead(std::span<const std::uint8_t> bytes) override {
    if (read_ != nullptr) {
      goOnIf(read_(context_, bytes.data(), bytes.size()) == 0);
    }
  }

 private:
  static void goOnIf(bool wanted) {
    if (!wanted) {
      throw CallFailure(QUOR_STOPPED, "the transfer observer stopped the operation");
    }
  }

  const QuorBytesWritten written_;
  const QuorBytesRead read_;
  void* const context_;
};

}  // namespace quordalvane::c

struct QuorPort {
  const std::shared_ptr<quordalvane::ExternalAccessoryPort> port;
  std::unique_ptr<quordalvane::c::FunctionObserver> observer;
};

struct QuorPrintJob {
  using Progress = std::function<void(const quordalvane::PrintProgress&)>;

  QuorPrintJob(std::shared_ptr<quordalvane::ExternalAccessoryPort> port,
               std::optional<quordalvane::ProofKind> proof, Progress told)
      : progress(std::move(told)),
        job(std::move(port), {.proof = proof, .progress = [this](const auto& now) {
                                waitsFor = now.waitsFor;
                                if (progress) {
                                  progress(now);
                                }
                              }}) {}

  /// Must be called before the job runs. Sets the result that remains if the run ends with an
  /// exception; this result does not say how many bytes were sent. A second call throws a
  /// `CallFailure` with QUOR_USAGE.
  void begin(std::size_t size) {
    if (hasRun.exchange(true)) {
      throw quordalvane::c::CallFailure(QUOR_USAGE,
                                        "the job has run already; a job runs only once");
    }
    result.outcome = quordalvane::PrintOutcome::Unconfirmed;
    result.obstacle = quordalvane::PrintObstacle::ExchangeFailed;
    result.bytesTotal = size;
  }

  std::string waitsFor;  // why the printer has paused in the job; "" if it has not paused

  // May be empty. While a named job runs, this function also records the beginning of the job in
  // the journal.
  Progress progress;

  quordalvane::PrintJob job;
  quordalvane::PrintResult result;
  std::atomic<bool> hasRun = false;
};

namespace quordalvane::c {

inline ExternalAccessoryPort& given(QuorPort* handle) {
  return *given(handle, "the port").port;
}

}  // namespace quordalvane::c
