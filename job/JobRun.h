#pragma once

#include <atomic>
#include <memory>
#include <string>

#include "job/PortLink.h"
#include "job/PrintJob.h"
#include "job/Proof.h"

namespace quordalvane {

/// A print job that is running. This class sends the data and counts the sent bytes. A `Proof`
/// object prepares the printer before the data; after the data, it ends the job and finds out
/// whether the job was printed.
class JobRun {
 public:
  /// All three arguments must outlive this object.
  JobRun(const std::shared_ptr<ExternalAccessoryPort>& port, const PrintJob::Options& options,
         const std::atomic<bool>& cancelled);

  PrintResult run(ByteView data);

 private:
  void print(ByteView data);
  void enter(PrintStage stage);
  void reportProgress() const;
  void reportWaiting(const std::string& reason);
  void finishCancelled(ByteView data);
  void stop(const Setback& setback);
  std::string progressInWords() const;

  const PrintJob::Options& options_;
  PortLink link_;
  PrintResult result_;
  const ProofKind kind_;
  const std::unique_ptr<Proof> proof_;
  PrintStage stage_ = PrintStage::Begin;
  std::string waitsFor_;
};

}  // namespace quordalvane
