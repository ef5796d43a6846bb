#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "backends/DeviceSpec.h"
#include "platform/Clock.h"
#include "platform/EAAccessory.h"

namespace quordalvane {

/// A key that only one scheme takes.
struct SchemeKey {
  std::string_view name;                  ///< the text before the equals sign
  std::string_view values;                ///< the accepted values, as a text for people
  bool (*takes)(std::string_view value);  ///< returns whether the key accepts this value
};

/// A reason why a device may fail to open, and the advice for it.
struct OpenCause {
  static constexpr int anyCode = 0;  ///< a `code` that matches every error of the category

  int code;                 ///< an error code of the system or of `category`
  std::string_view name;    ///< the name by which scripts know the cause
  std::string_view text;    ///< the cause, for people
  std::string_view advice;  ///< the next step for the user

  /// The category of `code`; null if `code` is an error code of the system.
  const std::error_category& (*category)() = nullptr;

  /// Returns whether this cause explains `error`.
  bool fits(const std::error_code& error) const;
};

/// One possible setting of a device, for example of a serial line. The command `doctor` tries the
/// settings of a device one by one.
struct SchemeVariant {
  DeviceSpec spec;    ///< the device, with this setting in its options
  std::string words;  ///< this setting, in words: "at 9600 baud"
  std::string keys;   ///< the keys and values that select this setting: "baud=9600"

  /// The name of the fault that `doctor` reports if the device answers with this setting and with
  /// no other setting.
  std::string_view cause;
};

/// A scheme: all data about one way to reach devices. A device text, `SCHEME:PLACE,key=value`,
/// names a scheme, the place of a device and keys (see `DeviceSpec`). The place is the address of
/// the device in this scheme, for example a host and a port. The table of all schemes is in
/// `backends/Schemes.cpp`. The program `quorport` takes its help, its shell completion and its
/// advice on failures from this table.
///
/// A scheme is defined as `constinit const Scheme scheme = {.name = "tcp", ...}`. Members with a
/// default may be left out.
struct Scheme {
  std::string_view name;   ///< "tcp"
  std::string_view place;  ///< the form of PLACE in a device text: "HOST:PORT"
  std::string_view about;  ///< the kind of device: "a printer on the network"

  /// Throws `std::invalid_argument` if `place` is not valid for this scheme.
  void (*checkPlace)(const std::string& place);

  /// Creates the accessory. Throws `std::invalid_argument` for an option that is not valid.
  std::shared_ptr<EAAccessory> (*make)(const DeviceSpec& spec, AccessoryIdentity identity,
                                       Clock& clock);

  std::string_view ifSilent;         ///< advice if the device can be opened but never answers
  std::string_view ifNotUnderstood;  ///< advice if the device answers, but not as a printer does

  std::span<const OpenCause> causes = {};  ///< the reasons why opening may fail
  std::span<const SchemeKey> keys = {};    ///< the keys that only this scheme takes

  /// A text for people about the keys that the scheme takes but `keys` does not list; `make` checks
  /// these keys. If this text is not empty, a device text may have keys instead of a place:
  /// `virtual:coverOpen=true`.
  std::string_view moreKeys = {};

  /// The default name of the accessory if PLACE is empty, as in the device text `virtual:`.
  std::string_view nameWithoutPlace = {};

  /// Returns the place that a person means by `text`, a device text without a scheme; nullopt if
  /// `text` does not belong to this scheme.
  std::optional<std::string> (*placeMeantBy)(std::string_view text) = nullptr;

  /// A device text without a place after its colon, such as `bluetooth:`, may mean several devices.
  /// This function returns the places that these devices have at this moment. No returned place
  /// contains a comma or a backslash. The pointer is null if a device text without a place means
  /// one device or is not allowed.
  std::vector<std::string> (*places)() = nullptr;

  /// True if every process has a device of its own, which no other process can use.
  bool isOfOneProcess = false;

  /// Returns the path of the file that is opened for the device; "" if the path is unknown now. The
  /// pointer is null if no file is opened.
  std::string (*fileOf)(const DeviceSpec& spec) = nullptr;

  /// Returns the possible settings of the device, beginning with the setting in `spec`. The pointer
  /// is null if there is only one setting.
  std::vector<SchemeVariant> (*variants)(const DeviceSpec& spec) = nullptr;
};

}  // namespace quordalvane
