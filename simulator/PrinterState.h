#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "simulator/CharacterSets.h"
#include "simulator/Dialect.h"
#include "simulator/LackedCommands.h"

namespace quordalvane::simulator {

/// The thirty conditions that a printer reports, in the order of its status block.
enum class Flag : std::uint8_t {
  CoverOpen,
  Offline,
  CompulsionSwitch,
  OverTemp,
  UnrecoverableError,
  CutterError,
  MechError,
  HeadThermistorError,
  ReceiveBufferOverflow,
  PageModeCmdError,
  PaperDetectionError,
  BlackMarkError,
  JamError,
  PresenterPaperJamError,
  HeadUpError,
  VoltageError,
  ReceiptBlackMarkDetection,
  ReceiptPaperEmpty,
  ReceiptPaperNearEmptyInner,
  ReceiptPaperNearEmptyOuter,
  PaperPresent,
  PresenterPaperPresent,
  PeelerPaperPresent,
  StackerFull,
  SlipTOF,
  SlipCOF,
  SlipBOF,
  ValidationPaperPresent,
  SlipPaperPresent,
  EtbAvailable,
};

inline constexpr std::size_t flagCount = 30;

/// The names of the flags; element k names flag k.
extern const std::array<std::string_view, flagCount> flagNames;

/// The part of the printer that each flag is about: cover, paper, drawer, error, presenter, slip or
/// other; element k is of flag k.
extern const std::array<std::string_view, flagCount> flagGroups;

/// The flag of that name; empty if there is no such flag.
std::optional<Flag> flagNamed(std::string_view name);

/// A setting that is no flag, for those who ask people for it. See `PrinterState::set`.
struct SettingForm {
  enum class Kind { Flag, Number, Text };
  std::string_view key;
  Kind kind = Kind::Text;
  std::uint32_t least = 0;  ///< of a number
  std::uint32_t most = 0;   ///< of a number; of a text its most characters, 0 for no limit
  std::string_view about;   ///< in a few words
  std::vector<std::string_view> choices{};  ///< the usual values; empty if there are none
  bool isFree = true;                       ///< it takes other values than the choices
};

/// Every setting that is no flag.
std::vector<SettingForm> settingForms();

using DipBank = std::array<std::uint8_t, 2>;

/// Everything about a printer that can be set: its sensors, its settings, its speed.
/// A plain value; it knows nothing of bytes on a link or of time.
class PrinterState {
 public:
  /// The condition as the printer reports it. `offline` is also true while the cover is open, the
  /// paper is out or any error is present, even if it was set on line.
  bool flag(Flag flag) const;
  void setFlag(Flag flag, bool value);

  /// Changes one setting by its name from text: any flag (`true` or `false`), `firmware`, `dip1`
  /// and `dip2` (two bytes as four hex digits), `speed` (bytes a second, 0: unlimited), `buffer`
  /// (bytes), `presenterState` and `connectedInterface` (their codes), `paper` (58 or 80 mm; the
  /// paper that is in the printer keeps its width), `proofs` (see `Proofs::parse`), `lacks` (see
  /// `LackedCommands::parse`), `lineMode`
  /// (`true` or `false`), `codePages` and `multiByte` (see `CharacterSets`), `utf8` (`true` or
  /// `false`), `maker`, `modelName` and `serialNumber` (texts), `modelId` and `typeId` (numbers to
  /// 255), `profile` (see `applyProfile`). Throws std::invalid_argument, with a text for people
  /// that names the key and the values it takes, always printable, and then changes nothing.
  void set(std::string_view key, std::string_view value);

  /// The value of a setting that is no flag, as `set` takes it; empty if there is no such setting,
  /// or it cannot be told, as of code pages.
  std::optional<std::string> get(std::string_view key) const;

  /// 1 to 64 printable ASCII characters; throws std::invalid_argument for any other value.
  void setFirmware(std::string_view text);
  const std::string& firmware() const { return firmware_; }

  /// The texts that ESC/POS programs ask for, each 1 to 64 printable ASCII characters; throw
  /// std::invalid_argument for any other value.
  void setMaker(std::string_view text);
  void setModelName(std::string_view text);
  void setSerialNumber(std::string_view text);
  const std::string& maker() const { return maker_; }
  const std::string& modelName() const { return modelName_; }
  const std::string& serialNumber() const { return serialNumber_; }

  /// 12 hex digits; throws std::invalid_argument for any other value.
  void setBluetoothAddress(std::string_view digits);
  const std::string& bluetoothAddress() const { return bluetoothAddress_; }

  /// At least 16 bytes, the room that the longest command needs; throws std::invalid_argument
  /// below.
  void setBufferSize(std::size_t bytes);
  std::size_t bufferSize() const { return bufferSize_; }

  /// 58 or 80; throws std::invalid_argument for any other value.
  void setPaperWidth(unsigned millimetres);
  unsigned paperMillimetres() const { return paperMillimetres_; }

  /// The button-security setting, 0 to 3: the two top bits of the first byte of bank 1.
  void setButtonSecurity(unsigned setting);
  unsigned buttonSecurity() const { return dipBanks[0][0] >> 6U; }

  Dialect dialect;
  LackedCommands lacked;
  CharacterSets characters;
  std::string profile = "both";  ///< the name of the profile that was applied last
  std::uint8_t modelId = 0x20;
  std::uint8_t typeId = 0x02;  ///< a cutter, and no characters of two bytes
  std::array<DipBank, 2> dipBanks{};
  std::uint8_t etbCounter = 0;
  std::uint8_t presenterState = 0;  ///< 0 idle, 1 holding paper, 2 retracted, 3 ejected
  std::uint8_t connectedInterface =
      5;  ///< 0 unknown, 1 serial, 2 USB, 3 Ethernet, 4 WLAN, 5 Bluetooth
  std::uint32_t bytesPerSecond = 0;  ///< how fast print data is worked through; 0: at once
  bool keepsPrinted = false;         ///< it keeps its print data, even if little is printed
  bool keepsReceived = false;        ///< it keeps the bytes of each job with its record

 private:
  std::uint32_t flags_ = 1U << static_cast<unsigned>(Flag::EtbAvailable);
  std::string firmware_ = "Virtual 1.0";
  std::string maker_ = "quor dalvane";
  std::string modelName_ = "Virtual";
  std::string serialNumber_ = "000001";
  std::string bluetoothAddress_ = "001122334455";
  std::size_t bufferSize_ = 4096;
  unsigned paperMillimetres_ = 80;
};

}  // namespace quordalvane::simulator
