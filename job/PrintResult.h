#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <quordalvane/QuorExport.h>
#include <quordalvane/QuorIOPort.h>

#include "iphone-IOPort/ZKQuorIOResultCode.h"
#include "platform/ProofKind.h"

namespace quordalvane {

/// How a job ended.
enum class PrintOutcome {
  Printed,      ///< the printer confirmed that it has printed the whole job
  Unconfirmed,  ///< bytes were sent, and nothing proves whether they were printed
  Refused,      ///< no byte of the job was sent, so it is safe to send the job again
};

/// Returns "printed", "unconfirmed" or "refused".
QUOR_EXPORT std::string_view nameOf(PrintOutcome outcome);

/// Why a job was not confirmed as printed.
enum class PrintObstacle {
  None,             ///< the job was printed, or has not been run
  PrinterNotReady,  ///< the printer answered that it is off line, or that paper is in its exit
  LinkLost,         ///< the link was lost before the job ended
  Cancelled,        ///< `PrintJob::cancel` was called
  ExchangeFailed,   ///< no answer, a failed write, or no space on the link for too long
  NoProof,  ///< all data was sent, but its confirmation is missing or could belong to another job
};

/// The result of a job, for a program and for the person who uses it.
struct PrintResult {
  PrintOutcome outcome = PrintOutcome::Refused;  ///< how the job ended
  PrintObstacle obstacle = PrintObstacle::None;  ///< why the job was not printed; None if it was
                                                 ///< printed

  /// The proof that was used. Auto if the job ended before a proof was chosen; None if the printer
  /// gives no proof.
  ProofKind proof = ProofKind::None;

  /// True if the job asked the printer how it can confirm a job. To avoid this query, choose a
  /// proof other than Auto in the job's options or in the key `proof=` of the device.
  bool hasAskedForProof = false;

  /// The result code of `beginCheckedBlock`; `ZKQuorIOResultCodeFailedError` if the job had no
  /// checked block.
  std::int64_t resultCode = ZKQuorIOResultCodeFailedError;

  std::uint64_t bytesTotal = 0;     ///< the size of the job
  std::uint64_t bytesAccepted = 0;  ///< exactly how many bytes of the job the link took

  /// The last status of the printer; null if there was no status. As soon as data is sent, an
  /// earlier status is dropped, because it says nothing about the data.
  std::optional<QuorPrinterStatus_2> status;

  /// The reason why the job was not printed, for a person: "cover open", "link lost after 1,204 of
  /// 3,800 bytes". The reason is "" if the job was printed.
  std::string reason;

  /// Advice on the next step, for a person; "" if the job was printed.
  std::string advice;
};

}  // namespace quordalvane
