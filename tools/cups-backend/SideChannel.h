#pragma once

#include <cups/sidechannel.h>

#include <string>

#include "tools/cups-backend/PrinterState.h"

namespace quordalvane::cups {

/// Answers the questions of a job's filters about the printer. The print system gives the channel a
/// descriptor of its own.
class SideChannel {
 public:
  /// `state` must outlive it; `deviceId` is the device's own identity.
  SideChannel(const PrinterState& state, std::string deviceId);

  /// Becomes readable when a filter asks; -1 if no filter can.
  int descriptor() const { return descriptor_; }

  /// Reads one question and answers it. False if there will be no other.
  bool serve();

  /// Whether a filter waits until all is printed.
  bool isAnswerOwed() const { return isDrainOwed_; }

  /// Answers that filter if all is printed, or will not be.
  void answerOwed();

 private:
  void answer(cups_sc_command_t command);
  void write(cups_sc_command_t command, cups_sc_status_t status, const std::string& data = "");

  const PrinterState& state_;
  const std::string deviceId_;
  const int descriptor_;
  bool isDrainOwed_ = false;
};

/// The state of the printer in the channel's own bits.
char stateBitsOf(const QuorPrinterStatus_2& status);

}  // namespace quordalvane::cups
