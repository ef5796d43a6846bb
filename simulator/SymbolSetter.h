#pragma once

#include <cstdint>
#include <optional>

#include "simulator/Bytes.h"
#include "simulator/Paper.h"

namespace quordalvane::simulator {

/// The settings that bar codes and QR codes are printed with, as the commands set them.
class SymbolSetter {
 public:
  /// Takes a setting: height 1d 68, module width 1d 77, place of the text 1d 48.
  void setBarcode(ByteView command);

  /// The bar code of a command 1d 6b, empty if its symbology cannot be shown.
  std::optional<Barcode> barcode(ByteView command) const;

  enum class Outcome { Stored, Print, Unknown };

  /// Carries out a QR command 1d 28 6b. After `print` the code is to be taken with `qrCode()`.
  Outcome applyQr(ByteView command);

  const QrCode& qrCode() const { return qr_; }

 private:
  Barcode settings_;
  QrCode qr_;
};

}  // namespace quordalvane::simulator
