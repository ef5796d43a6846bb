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

/// Why an inquiry got no valid answer.
enum class InquiryCause {
  NoAnswer,          ///< the printer did not answer in time, or the link did not take the query
  NotUnderstood,     ///< the answer is not one that a printer gives
  NotReady,          ///< the printer is off line; this query needs a printer that is on line
  LinkLost,          ///< the link was lost
  UnknownEmulation,  ///< the port's emulation is unknown, so the right command is unknown
};

/// Thrown if an inquiry gets no valid answer. Its text is for a person.
class QUOR_EXPORT InquiryError : public std::runtime_error {
 public:
  /// `cause` gives the reason to a program, `text` to a person.
  InquiryError(InquiryCause cause, const std::string& text)
      : std::runtime_error(text), cause_(cause) {}

  /// Returns why there is no valid answer.
  InquiryCause cause() const { return cause_; }

 private:
  InquiryCause cause_;
};

/// Queries a printer over an open port and checks its answers. The queries of the port itself make
/// no such check: they may accept the rest of an earlier answer as the answer, or bytes from a
/// device that is not a printer. Nothing is printed.
///
///     std::cout << (PrinterInquiry(port).isOnline() ? "on line" : "off line");
///
/// Each query throws an InquiryError if there is no valid answer. A query ends within twice the
/// port's input/output time-out plus five seconds, even if the printer never stops sending;
/// `disconnect` may take ten seconds more. Received bytes that nobody has read are dropped. During
/// a query the inquiry is the port's only observer; afterwards the port has no observer. Exceptions
/// of the platform pass through. A query blocks the calling thread. No other thread may use the
/// port during a query.
class QUOR_EXPORT PrinterInquiry {
 public:
  /// `port` must not be null; this object keeps the port alive.
  explicit PrinterInquiry(std::shared_ptr<ExternalAccessoryPort> port) : port_(std::move(port)) {}

  /// Asks for the printer's status. `level` is only logged.
  QuorPrinterStatus_2 status(std::uint32_t level = 0);

  /// Asks whether the printer is ready to print.
  bool isOnline();

  /// Asks for the printer's firmware text and returns it as received. Throws if the printer is off
  /// line.
  std::string firmware();

  /// Asks for the two setting bytes of each of the two DIP-switch banks.
  std::array<std::vector<std::uint8_t>, 2> dipSwitches();

  /// Asks for the button-security time-out. Returns zero if button security is off; otherwise the
  /// printer's value plus the port's input/output time-out.
  std::chrono::milliseconds buttonSecurityTimeout();

  /// Returns the strongest proof that the printer can give; None if the printer gives no proof. An
  /// off-line ESC/POS printer may hold back its answers; it then seems to give no proof. The query
  /// resets the printer's count of end-of-job marks, so do not send it while another program
  /// prints.
  ProofKind proof();

  /// Makes the printer drop the data that it has not printed yet. Returns when the link has taken
  /// the command, because the printer sends no answer.
  void dropAll();

  /// Makes the printer's Bluetooth module drop the link; the port remains open.
  void disconnect();

  /// Returns the bytes that the printer sent during the last query, including those that were not
  /// understood.
  std::vector<std::uint8_t> heard() const;

 private:
  const std::shared_ptr<ExternalAccessoryPort> port_;

  // The bytes of each read that the port made during the last query. An entry is empty if the read
  // received nothing.
  std::vector<std::vector<std::uint8_t>> reads_;
};

}  // namespace quordalvane
