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
  Printed,      ///< the printer confirmed that it has printed all of it
  Unconfirmed,  ///< bytes were sent, and nothing proves that they were printed, or that they were
                ///< not
  Refused,      ///< no byte of the job was sent: sending it again is safe
};

/// "printed", "unconfirmed", "refused".
QUOR_EXPORT std::string_view nameOf(PrintOutcome outcome);

/// Why a job was not printed, as far as a program must distinguish the cases.
enum class PrintObstacle {
  None,             ///< printed, or not run to its end
  PrinterNotReady,  ///< the printer answered and is off line, or paper is in its exit
  LinkLost,         ///< the link ended before the job did
  Cancelled,        ///< `PrintJob::cancel` was called
  ExchangeFailed,   ///< no answer, no space for too long, or a failed write
  NoProof,  ///< all was sent; the sign that it was printed is missing, or could be another job's
};

/// The result of a job, for the program and for the person who uses it.
struct PrintResult {
  PrintOutcome outcome = PrintOutcome::Refused;  ///< how the job ended
  PrintObstacle obstacle = PrintObstacle::None;  ///< why it was not printed; None if it was

  /// The proof that was used: Auto before one was chosen, None for a printer that gives no proof.
  ProofKind proof = ProofKind::None;

  /// Whether the printer was asked before the data which proof it gives. To name the proof, in the
  /// job's options or by `proof=` of the device, saves the question.
  bool hasAskedForProof = false;

  /// The result code of the block's beginning; failed without a block.
  std::int64_t resultCode = ZKQuorIOResultCodeFailedError;

  std::uint64_t bytesTotal = 0;     ///< the size of the job
  std::uint64_t bytesAccepted = 0;  ///< how many bytes of the job the link took, exactly

  /// The last status that was obtained; empty if there was none. Once data was sent, only a status
  /// from after the data counts: an earlier one says nothing about the data.
  std::optional<QuorPrinterStatus_2> status;

  /// Why, for a person: "cover open", "link lost after 1,204 of 3,800 bytes". "" if printed.
  std::string reason;

  /// The next step, for a person. "" if printed.
  std::string advice;
};

}  // namespace quordalvane
