#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "simulator/Paper.h"

namespace quordalvane::simulator {

/// The settings that bar codes and QR codes are printed with, and what the commands say of both.
class SymbolSetter {
 public:
  /// Takes a setting: height 1d 68, module width 1d 77, place of the text 1d 48.
  void setBarcode(std::span<const std::uint8_t> command);

  /// The bar code of a command 1d 6b, or none if its symbology cannot be shown.
  std::optional<Barcode> barcode(std::span<const std::uint8_t> command) const;

  enum class Outcome { Stored, Print, Unknown };

  /// Carries out a QR command 1d 28 6b. After `print` the code is to be taken with `qrCode()`.
  Outcome applyQr(std::span<const std::uint8_t> command);

  const QrCode& qrCode() const { return qr_; }

 private:
  Barcode settings_;
  QrCode qr_;
};

}  // namespace quordalvane::simulator
