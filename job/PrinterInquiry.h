#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <quordalvane/QuorExport.h>
#include <quordalvane/QuorIOPort.h>

#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "platform/ProofKind.h"

namespace quordalvane {

/// Why an inquiry has no answer.
enum class InquiryCause {
  NoAnswer,          ///< the printer did not answer in time, or the link did not take the question
  NotUnderstood,     ///< something answered, and not as a printer does
  NotReady,          ///< the printer is off line, and is not asked this then
  LinkLost,          ///< the link ended
  UnknownEmulation,  ///< the port's emulation is not known, so that there is no way to ask
};

/// An inquiry without an answer; its text is for a person.
class QUOR_EXPORT InquiryError : public std::runtime_error {
 public:
  /// `cause` says why there is no answer, `text` says it to a person.
  InquiryError(InquiryCause cause, const std::string& text)
      : std::runtime_error(text), cause_(cause) {}

  /// Why there is no answer.
  InquiryCause cause() const { return cause_; }

 private:
  InquiryCause cause_;
};

/// Questions to a printer over an open port, with answers that are judged: the port's own queries
/// may take the rest of one answer, or the bytes of another device, for the next answer. Nothing is
/// printed.
///
///     std::cout << (PrinterInquiry(port).isOnline() ? "on line" : "off line");
///
/// Each question throws an InquiryError if it has no answer. It ends within twice the port's
/// input/output time-out and five seconds, even on a printer that never stops sending; `disconnect`
/// ends ten seconds later. Bytes that wait in the port's input are thrown away. The inquiry is the
/// port's only observer during a question, and removes itself then. Exceptions of the platform pass
/// through. Blocks the calling thread, which must be the port's only caller.
class QUOR_EXPORT PrinterInquiry {
 public:
  /// `port`, never null, is kept alive.
  explicit PrinterInquiry(std::shared_ptr<ExternalAccessoryPort> port) : port_(std::move(port)) {}

  /// The printer's status. `level` is only logged.
  QuorPrinterStatus_2 status(std::uint32_t level = 0);

  /// Whether the printer is ready to print.
  bool isOnline();

  /// The printer's firmware text, as it was received. An off-line printer is not asked.
  std::string firmware();

  /// The two setting bytes of each bank.
  std::array<std::vector<std::uint8_t>, 2> dipSwitches();

  /// The button-security time-out: zero if it is off, otherwise the printer's time and the port's
  /// input/output time-out.
  std::chrono::milliseconds buttonSecurityTimeout();

  /// The strongest proof of a job that the printer gives; None if it gives none. A printer that is
  /// off line may keep its answers in ESC/POS, and then seems to give none. The printer's count of
  /// marks begins anew: do not ask while another program prints on it.
  ProofKind proof();

  /// Makes the printer drop the data that it has not printed yet. There is no answer: returns after
  /// the link has taken the command.
  void dropAll();

  /// Makes the printer's Bluetooth module drop the link; the port remains open.
  void disconnect();

  /// The bytes that the printer sent during the last question, whether understood or not.
  std::vector<std::uint8_t> heard() const;

 private:
  const std::shared_ptr<ExternalAccessoryPort> port_;
  std::vector<std::vector<std::uint8_t>>
      reads_;  // of the last question; an empty one received nothing
};

}  // namespace quordalvane
