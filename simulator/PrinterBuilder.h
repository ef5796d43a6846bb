#pragma once

#include <string_view>

#include "simulator/Bytes.h"
#include "simulator/Faults.h"
#include "simulator/VirtualPrinter.h"

namespace quordalvane::simulator {

/// Describes a printer, and the faults of its links, in one expression:
/// `PrinterBuilder().speed(200).coverOpen().fault("late-reply", "300")`. Settings that the
/// expression does not name have their defaults in `PrinterState`. The links have only the named
/// faults. An invalid value throws std::invalid_argument.
class PrinterBuilder {
 public:
  /// Sets how many bytes of print data are printed in a second; 0 means unlimited.
  PrinterBuilder& speed(std::uint32_t bytesPerSecond);
  PrinterBuilder& buffer(std::size_t bytes);
  PrinterBuilder& firmware(std::string_view text);
  PrinterBuilder& dipBank1(DipBank bank);
  PrinterBuilder& dipBank2(DipBank bank);
  PrinterBuilder& buttonSecurity(unsigned setting);
  PrinterBuilder& bluetoothAddress(std::string_view digits);
  PrinterBuilder& narrowPaper();
  PrinterBuilder& etbCounter(std::uint8_t count);
  PrinterBuilder& presenterState(std::uint8_t code);
  PrinterBuilder& connectedInterface(std::uint8_t code);
  PrinterBuilder& coverOpen() { return with(Flag::CoverOpen); }
  PrinterBuilder& offline() { return with(Flag::Offline); }
  PrinterBuilder& paperOut() { return with(Flag::ReceiptPaperEmpty); }
  PrinterBuilder& paperInExit() { return with(Flag::PaperPresent); }

  /// Makes the printer keep its print data, for `VirtualPrinter::printed`.
  PrinterBuilder& keepPrinted();

  /// Makes the printer keep the bytes of each job, in the job's record.
  PrinterBuilder& keepReceived();

  /// Sets or clears any flag.
  PrinterBuilder& with(Flag flag, bool value = true);

  /// Adds a fault to every link. `parseFault` describes `name`, `value` and the exceptions.
  PrinterBuilder& fault(std::string_view name, std::string_view value);

  /// Sets the seed of the random choices that faults make.
  PrinterBuilder& seed(std::uint64_t number);

  /// Handles one pair of key and value, as users write them after `virtual:` and `--set`: a setting
  /// in the form of `PrinterState::set`, a fault, or the seed.
  PrinterBuilder& set(std::string_view key, std::string_view value);

  const PrinterState& state() const { return state_; }
  const Faults& faults() const { return faults_; }
  VirtualPrinter build() const { return VirtualPrinter(state_); }

 private:
  PrinterState state_;
  Faults faults_;
};

}  // namespace quordalvane::simulator
