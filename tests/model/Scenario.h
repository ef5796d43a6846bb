#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "tests/model/Call.h"
#include "tests/support/Script.h"
#include "tests/support/ScriptedWorld.h"
#include "tests/support/Trace.h"

namespace quordalvane::test {

inline constexpr std::int32_t lineMode = 1;
inline constexpr std::int32_t escPos = 2;
inline constexpr std::int32_t unknownEmulation = 0;

/// The result of a call.
struct Outcome {
  bool opened = false;  // whether the port was open before the call
  std::string result;
  Caller caller;
  std::string properties;  // the port's properties after the call
  std::vector<Line> lines;
  double seconds = 0;  // in virtual time

  /// The trace's lines about transferred bytes and about waits, as `view` shows them.
  std::string wire() const { return view(lines, {About::Data, About::Wait}); }

  /// The trace's lines about calls to the platform, except questions (`About::Question`), as `view`
  /// shows them.
  std::string calls() const { return view(lines, {About::Data, About::Wait, About::Lifecycle}); }

  /// The records of one method.
  std::string records(const std::string& method) const { return recordsOf(lines, method); }

  /// All lines of the trace, including the log records.
  std::string all() const { return whole(lines); }

  /// The bytes that the link took, joined.
  Bytes sent() const;

  /// The whole run as text, to compare it with another run.
  std::string report() const;
};

/// A call on an open port whose link follows a script.
struct Scenario {
  Creation creation{};
  Script script{};
  std::vector<AccessoryIdentity> accessories = {shopPrinter()};
  Layer layer{};
  std::int64_t layerStepsBack = 0;  // seconds by which the clock of `layer` steps back
  std::optional<std::uint32_t> endMillis{};
  std::optional<std::uint32_t> holdMillis{};
  std::optional<std::int64_t> dataTimeoutSeconds{};
  std::optional<std::string> systemVersion{};
  bool isOpen = true;
  enum class Opens { Surely, Perhaps } opens = Opens::Surely;  // only if `isOpen`
  bool logging = true;
  std::set<std::int32_t> levels = {0};

  static Scenario in(std::int32_t emulation, std::uint32_t timeout = 10000);

  /// Runs the call on a port, and on the model in a separate world. Both runs must be equal in
  /// everything, and `overrun` must find no call that takes too long.
  Outcome run(const Call& call) const;

  Outcome runOnPort(const Call& call) const;
  Outcome runOnModel(const Call& call) const;

 private:
  void prepare(ScriptedWorld& world) const;
};

/// For failure messages.
std::string describe(const Scenario& scenario);

}  // namespace quordalvane::test
