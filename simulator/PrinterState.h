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

/// The names of the flags, in the order of `Flag`.
extern const std::array<std::string_view, flagCount> flagNames;

/// The part of the printer to which each flag belongs, in the order of `Flag`: cover, paper,
/// drawer, error, presenter, slip or other.
extern const std::array<std::string_view, flagCount> flagGroups;

/// Returns the flag of this name; empty if there is none.
std::optional<Flag> flagNamed(std::string_view name);

/// The form of a setting that is not a `Flag`, for programs that ask the user for its value. See
/// `PrinterState::set`.
struct SettingForm {
  enum class Kind { Flag, Number, Text };
  std::string_view key;
  Kind kind = Kind::Text;
  std::uint32_t least = 0;  ///< the least value, if the value is a number
  /// The greatest value, if the value is a number; the greatest length, if the value is a text. 0
  /// means no limit.
  std::uint32_t most = 0;
  std::string_view about;                   ///< the setting's meaning, in a few words
  std::vector<std::string_view> choices{};  ///< the usual values; may be empty
  bool isFree = true;                       ///< values that are not in `choices` are also accepted
};

/// Returns one `SettingForm` for each setting that is not a `Flag`.
std::vector<SettingForm> settingForms();

using DipBank = std::array<std::uint8_t, 2>;

/// Everything that can be set on a printer: its conditions, its settings and its speed. This class
/// only stores these values. It has no connections and no clock.
class PrinterState {
 public:
  /// Returns the condition that the printer reports. `Offline` is also true while the cover is
  /// open, the paper is out or an error is present, even if the flag itself is not set.
  bool flag(Flag flag) const;
  void setFlag(Flag flag, bool value);

  /// Changes one setting by its name:
  ///
  /// - any flag, `lineMode`, `utf8`: `true` or `false`
  /// - `firmware`, `maker`, `modelName`, `serialNumber`: texts
  /// - `dip1`, `dip2`: two bytes as four hex digits
  /// - `speed`: bytes a second, 0: unlimited
  /// - `buffer`: bytes
  /// - `flow`: `none` or `xonxoff`
  /// - `presenterState`, `connectedInterface`: one of the codes listed at the member of this name
  /// - `paper`: 58 or 80 mm; paper that is already in the printer keeps its width
  /// - `modelId`, `typeId`: numbers from 0 to 255
  /// - `proofs`: see `Proofs::parse`
  /// - `lacks`: see `LackedCommands::parse`
  /// - `codePages`, `multiByte`: see `CharacterSets`
  /// - `profile`: see `applyProfile`
  ///
  /// Throws std::invalid_argument and changes nothing if the key or the value is invalid. The text
  /// of the error is for people and always printable. It names the key, and the accepted values or
  /// keys.
  void set(std::string_view key, std::string_view value);

  /// Returns the value of a setting that is not a `Flag`, in the form that `set` reads. Returns
  /// empty if there is no such setting.
  std::optional<std::string> get(std::string_view key) const;

  /// Sets the firmware text, 1 to 64 printable ASCII characters. Throws std::invalid_argument for
  /// any other text.
  void setFirmware(std::string_view text);
  const std::string& firmware() const { return firmware_; }

  /// Set the texts that ESC/POS programs can ask for, 1 to 64 printable ASCII characters each.
  /// Throw std::invalid_argument for any other text.
  void setMaker(std::string_view text);
  void setModelName(std::string_view text);
  void setSerialNumber(std::string_view text);
  const std::string& maker() const { return maker_; }
  const std::string& modelName() const { return modelName_; }
  const std::string& serialNumber() const { return serialNumber_; }

  /// Sets the address, 12 hex digits. Throws std::invalid_argument for any other text.
  void setBluetoothAddress(std::string_view digits);
  const std::string& bluetoothAddress() const { return bluetoothAddress_; }

  /// Sets the size of the buffer, at least 16 bytes, because the longest command needs them. Throws
  /// std::invalid_argument for a smaller size.
  void setBufferSize(std::size_t bytes);
  std::size_t bufferSize() const { return bufferSize_; }

  /// Sets the width of the paper, 58 or 80. Throws std::invalid_argument for any other width.
  void setPaperWidth(unsigned millimetres);
  unsigned paperMillimetres() const { return paperMillimetres_; }

  /// The button-security setting, 0 to 3: the two highest bits of the first byte of bank 1.
  void setButtonSecurity(unsigned setting);
  unsigned buttonSecurity() const { return dipBanks[0][0] >> 6U; }

  Dialect dialect;
  LackedCommands lacked;
  CharacterSets characters;
  std::string profile = "both";  ///< the name of the last applied profile
  std::uint8_t modelId = 0x20;
  std::uint8_t typeId = 0x02;  ///< 2: the printer has a cutter and no two-byte characters
  std::array<DipBank, 2> dipBanks{};
  std::uint8_t etbCounter = 0;
  std::uint8_t presenterState = 0;  ///< 0 idle, 1 holding paper, 2 retracted, 3 ejected
  std::uint8_t connectedInterface =
      5;  ///< 0 unknown, 1 serial, 2 USB, 3 Ethernet, 4 WLAN, 5 Bluetooth
  std::uint32_t bytesPerSecond = 0;  ///< the printing speed; 0: unlimited
  bool flowControl = false;  ///< the printer asks hosts to pause and to continue; see `FlowControl`
  bool keepsPrinted = false;   ///< all print data are kept, for tests
  bool keepsReceived = false;  ///< the bytes of each job are kept in the job's record

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
