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

/// A key that one scheme alone takes.
struct SchemeKey {
  std::string_view name;                  ///< before the equals sign
  std::string_view values;                ///< those that it takes, for people
  bool (*takes)(std::string_view value);  ///< whether it takes this one
};

/// Why a device may fail to open, and how to help.
struct OpenCause {
  static constexpr int anyCode = 0;  ///< a `code` that fits every error of the category

  int code;                 ///< of the system, or of the category
  std::string_view name;    ///< the name of the cause for scripts
  std::string_view text;    ///< the cause, for people
  std::string_view advice;  ///< the next step, for people

  /// The category of the code, if it is not one of the system's.
  const std::error_category& (*category)() = nullptr;

  /// Whether it is the cause of this error.
  bool fits(const std::error_code& error) const;
};

/// One way in which a device may be set, for the doctor to try.
struct SchemeVariant {
  DeviceSpec spec;         ///< the device, set in this way
  std::string words;       ///< "at 9600 baud"
  std::string keys;        ///< ",baud=9600": the keys that choose it
  std::string_view cause;  ///< the name of the finding that only this way is answered
};

/// Everything that is known of one way to reach devices. The table of all of them is in
/// `backends/Schemes.cpp`; the command takes its help, its completion and its advice from it.
///
/// A scheme is written as `constinit const Scheme scheme = {.name = "tcp", ...}`. Members without a
/// comment of their own may be left out.
struct Scheme {
  std::string_view name;   ///< "tcp"
  std::string_view place;  ///< how its place is written, "HOST:PORT"
  std::string_view about;  ///< the device, "a printer on the network"

  /// Throws `std::invalid_argument` for an invalid place.
  void (*checkPlace)(const std::string& place);

  /// Makes the accessory. Throws `std::invalid_argument` for an option that it refuses.
  std::shared_ptr<EAAccessory> (*make)(const DeviceSpec& spec, AccessoryIdentity identity,
                                       Clock& clock);

  std::string_view ifSilent;         ///< advice for a device that opens and never answers
  std::string_view ifNotUnderstood;  ///< advice for one whose answers are not a printer's

  std::span<const OpenCause> causes = {};  ///< why a session may not open
  std::span<const SchemeKey> keys = {};    ///< the keys that it alone takes

  /// The keys beyond `keys`, for people. If there is such a text, `make` checks those keys, and
  /// they may take the place's room: `virtual:coverOpen=true`.
  std::string_view moreKeys = {};

  /// The accessory's name if the place is empty.
  std::string_view nameWithoutPlace = {};

  /// The place that a person means by `text`, which names no scheme; nothing if it is not of this
  /// scheme.
  std::optional<std::string> (*placeMeantBy)(std::string_view text) = nullptr;

  /// The places of all devices that an empty place means now, none with a comma or a backslash.
  /// Null if an empty place means one device, or is none.
  std::vector<std::string> (*places)() = nullptr;

  /// Whether each process has such a device of its own.
  bool isOfOneProcess = false;

  /// The file that is opened for the device; "" if it cannot be known now. Null if there is none.
  std::string (*fileOf)(const DeviceSpec& spec) = nullptr;

  /// The ways in which such a device may be set, the one of `spec` first. Null if there is one way.
  std::vector<SchemeVariant> (*variants)(const DeviceSpec& spec) = nullptr;
};

}  // namespace quordalvane
