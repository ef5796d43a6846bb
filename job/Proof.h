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

/// One way to find out whether a printer has printed a job. JobRun sends and counts the data; the
/// proof acts before and after the data and judges the answers. From the call of `begin` to the end
/// of the job, the proof sees every byte that is sent or received.
///
/// Every wait of a proof has a limit. The exception PortLink::Cancelled passes through the
/// functions of a proof.
class Proof : public TransferObserver {
 public:
  /// Prepares the printer. Returns a setback, with the reason, if the data must not be sent.
  virtual MaybeSetback begin() = 0;

  /// Ends the job and waits for the printer's confirmation. `data` is the whole job and not empty.
  /// Success proves that the printer has printed the whole job.
  virtual MaybeSetback end(ByteView data) = 0;

  /// Restores the printer's state after `begin` returned a setback.
  virtual void leave() = 0;

  /// Returns the command that makes the printer drop the data that it has not printed yet.
  virtual ByteView dropCommand() const = 0;

  /// Called with a reason when the printer pauses in a job, and with "" when the printer continues
  /// the job.
  using Waiting = std::function<void(const std::string&)>;
  void setWaiting(Waiting waiting) { waiting_ = std::move(waiting); }

  void bytesWritten(ByteView /*bytes*/) override {}
  void bytesRead(ByteView /*bytes*/) override {}

 protected:
  /// The proof fills in the result code and the status of `result`. Both arguments must outlive the
  /// proof.
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

/// Returns the proof that is configured for the port's accessory; Auto if no proof is configured.
ProofKind proofOf(ExternalAccessoryPort& port);

/// Creates a proof of this kind. If the emulation of the link's port has no such proof, the
/// returned proof proves nothing.
std::unique_ptr<Proof> makeProof(ProofKind kind, PortLink& link, PrintResult& result);

}  // namespace quordalvane
