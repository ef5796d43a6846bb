#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "iphone-IOPort/TransferObserver.h"
#include "job/ByteView.h"
#include "job/PortLink.h"
#include "job/PrintResult.h"
#include "job/Setback.h"

namespace quordalvane {

/// One way to learn from a printer whether it has printed a job. The job moves and counts the data;
/// the proof begins before the data, ends after it, and judges. It sees every byte that passes
/// meanwhile.
///
/// A wait that a proof begins has a limit. Cancelled passes through.
class Proof : public TransferObserver {
 public:
  /// Makes the printer ready. After success the data may be sent; after a setback nothing of the
  /// job may.
  virtual MaybeSetback begin() = 0;

  /// Ends the job, whose `data` is never empty, and waits for the printer's sign. Success is the
  /// proof that the printer has printed all of `data`.
  virtual MaybeSetback end(ByteView data) = 0;

  /// Gives the printer back after a `begin` that had a setback.
  virtual void leave() = 0;

  /// The command that makes the printer drop the data that it has not printed yet.
  virtual ByteView dropCommand() const = 0;

  /// Called with the reason for which a printer that keeps the job has paused, and with "" when it
  /// continues.
  using Waiting = std::function<void(const std::string&)>;
  void setWaiting(Waiting waiting) { waiting_ = std::move(waiting); }

  void bytesWritten(ByteView /*bytes*/) override {}
  void bytesRead(ByteView /*bytes*/) override {}

 protected:
  /// A proof fills the result code and the status of `result`. Both arguments must outlive it.
  Proof(PortLink& link, PrintResult& result) : link_(link), result_(result) {}

  PortLink& link() const { return link_; }
  PrintResult& result() const { return result_; }
  const Waiting& waiting() const { return waiting_; }
  void reportWaiting(const std::string& reason) const {
    if (waiting_) {
      waiting_(reason);
    }
  }

 private:
  Waiting waiting_;
  PortLink& link_;
  PrintResult& result_;
};

/// The proof that the owner of the port's accessory has named; Auto if none was.
ProofKind proofOf(ExternalAccessoryPort& port);

/// The proof of that kind on the link's port; one that proves nothing if the port's emulation has
/// no such proof.
std::unique_ptr<Proof> makeProof(ProofKind kind, PortLink& link, PrintResult& result);

}  // namespace quordalvane
