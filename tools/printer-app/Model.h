#pragma once

#include <array>
#include <span>
#include <string_view>

#include "iphone-IOPort/enum.h"
#include "tools/printer-app/Pappl.h"

namespace quordalvane::printer_app {

/// The types of files that contain printer commands, which are passed on unchanged.
inline constexpr auto escPosType = "application/vnd.escpos";
inline constexpr auto lineModeType = "application/vnd.quordalvane-line-mode";
inline constexpr std::array commandTypes = {escPosType, lineModeType};

/// A kind of printer: its commands and its paper width.
struct Model {
  const char* name;
  const char* description;
  ZKEmulation emulation;
  unsigned dots;         ///< the width of the print head; 8 dots are a millimetre
  int paperMillimetres;  ///< the width of the roll
};

/// Returns all kinds of printers; the first is the default.
std::span<const Model> everyModel();

/// Returns the kind of printer that is called `name`; null if there is no such kind.
const Model* modelNamed(std::string_view name);

/// Describes a kind of printer to the framework. The description includes this program's own job
/// options, `quor-cut` and `quor-drawer`.
void describe(const Model& model, pappl_pr_driver_data_t& data, ipp_t*& attributes);

}  // namespace quordalvane::printer_app
