#pragma once

#include <cups/sidechannel.h>

#include <functional>
#include <string>

#include "tools/cups-backend/PrinterState.h"

namespace quordalvane::cups {

/// Answers the questions that a job's filters ask about the printer. The questions arrive on a
/// separate descriptor.
class SideChannel {
 public:
  /// `state` must outlive this object. `deviceId` is the IEEE 1284 device ID of the printer.
  /// `isJobWhole` returns whether the filters have handed over all data.
  SideChannel(const PrinterState& state, std::string deviceId, std::function<bool()> isJobWhole);

  /// Returns the descriptor that becomes readable when a filter sends a question; -1 if there is no
  /// side channel.
  int descriptor() const { return descriptor_; }

  /// Reads one question and answers it. Returns false if no other question can arrive.
  bool serve();

  /// A filter can ask for an answer that is sent when all data is printed. Returns true while a
  /// filter waits for this answer.
  bool isAnswerOwed() const { return isDrainOwed_; }

  /// Answers the waiting filter if the printer has confirmed all data, or if it is certain that the
  /// printer will not confirm the data. Otherwise does nothing.
  void answerOwed();

 private:
  void answer(cups_sc_command_t command);
  void write(cups_sc_command_t command, cups_sc_status_t status, const std::string& data = "");

  const PrinterState& state_;
  const std::string deviceId_;
  const std::function<bool()> isJobWhole_;
  const int descriptor_;
  bool isDrainOwed_ = false;
};

/// Returns the state of the printer as the bits of the side channel.
char stateBitsOf(const QuorPrinterStatus_2& status);

}  // namespace quordalvane::cups
