#pragma once

#include <array>
#include <span>
#include <string_view>

#include "iphone-IOPort/enum.h"
#include "tools/printer-app/Pappl.h"

namespace quordalvane::printer_app {

/// The types of files that hold a printer's own commands, by which they are handed on as they are.
/// @{
inline constexpr auto escPosType = "application/vnd.escpos";
inline constexpr auto lineModeType = "application/vnd.quordalvane-line-mode";
inline constexpr std::array commandTypes = {escPosType, lineModeType};
/// @}

/// A kind of printer: its commands and its paper.
struct Model {
  const char* name;
  const char* description;
  ZKEmulation emulation;
  unsigned dots;         ///< of the print head, 8 a millimetre
  int paperMillimetres;  ///< the width of the roll
};

/// Every kind, the default first.
std::span<const Model> everyModel();

/// The kind of this name; null if there is none.
const Model* modelNamed(std::string_view name);

/// Describes the kind to the framework, with the attributes of its own: `quor-cut` and
/// `quor-drawer`.
void describe(const Model& model, pappl_pr_driver_data_t& data, ipp_t*& attributes);

}  // namespace quordalvane::printer_app
