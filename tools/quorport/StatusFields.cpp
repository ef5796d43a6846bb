#include "tools/quorport/StatusFields.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string_view>

#include "job/StatusText.h"
#include "text/Hex.h"

namespace quordalvane::tool {
namespace {

using Status = QuorPrinterStatus_2;

// The name of a flag, and the remark to be made if the flag is set. The remark is "" if `remarks`
// has another text for the flag, or if nobody needs a remark about the flag.
struct FlagField {
  std::string_view name;
  std::uint32_t Status::*flag;
  std::string_view remark;
};

constexpr FlagField flagFields[] = {
    {"coverOpen", &Status::coverOpen, ""},
    {"offline", &Status::offline, ""},
    {"compulsionSwitch", &Status::compulsionSwitch, "the cash drawer's switch is on"},
    {"overTemp", &Status::overTemp, ""},
    {"unrecoverableError", &Status::unrecoverableError, ""},
    {"cutterError", &Status::cutterError, ""},
    {"mechError", &Status::mechError, ""},
    {"headThermistorError", &Status::headThermistorError, ""},
    {"receiveBufferOverflow", &Status::receiveBufferOverflow, ""},
    {"pageModeCmdError", &Status::pageModeCmdError, ""},
    {"paperDetectionError", &Status::paperDetectionError, ""},
    {"blackMarkError", &Status::blackMarkError, ""},
    {"jamError", &Status::jamError, ""},
    {"presenterPaperJamError", &Status::presenterPaperJamError, ""},
    {"headUpError", &Status::headUpError, ""},
    {"voltageError", &Status::voltageError, ""},
    {"receiptBlackMarkDetection", &Status::receiptBlackMarkDetection, "a sensor sees a black mark"},
    {"receiptPaperEmpty", &Status::receiptPaperEmpty, ""},
    {"receiptPaperNearEmptyInner", &Status::receiptPaperNearEmptyInner,
     "the paper is near its end"},
    {"receiptPaperNearEmptyOuter", &Status::receiptPaperNearEmptyOuter,
     "the paper is near its end (outer sensor)"},
    {"paperPresent", &Status::paperPresent, "paper was left in the exit"},
    {"presenterPaperPresent", &Status::presenterPaperPresent, "paper is in the presenter"},
    {"peelerPaperPresent", &Status::peelerPaperPresent, "paper is in the peeler"},
    {"stackerFull", &Status::stackerFull, ""},
    {"slipTOF", &Status::slipTOF, "a sensor sees the top edge of the slip"},
    {"slipCOF", &Status::slipCOF, "a sensor sees the cut edge of the slip"},
    {"slipBOF", &Status::slipBOF, "a sensor sees the bottom edge of the slip"},
    {"validationPaperPresent", &Status::validationPaperPresent, "validation paper is in place"},
    {"slipPaperPresent", &Status::slipPaperPresent, "slip paper is in place"},
    {"etbAvailable", &Status::etbAvailable, ""},
};

constexpr std::array<std::string_view, 4> presenterStates = {"idle", "holding paper", "retracted",
                                                             "ejected"};
constexpr std::array<std::string_view, 6> interfaces = {"unknown",  "serial",       "USB",
                                                        "Ethernet", "wireless LAN", "Bluetooth"};

template <std::size_t count>
std::string nameOf(const std::array<std::string_view, count>& names, std::uint8_t code) {
  return code < count ? std::string(names[code]) : "code " + std::to_string(code);
}

std::string rawHex(const Status& status) {
  const std::size_t length = std::min<std::size_t>(status.rawLength, sizeof status.raw);
  return hexText({status.raw, length});
}

}  // namespace

Json jsonOf(const Status& status) {
  Json json;
  for (const FlagField& field : flagFields) {
    json[field.name] = status.*field.flag;
  }
  json["etbCounter"] = status.etbCounter;
  json["presenterState"] = status.presenterState;
  json["connectedInterface"] = status.connectedInterface;
  json["rawLength"] = status.rawLength;
  json["raw"] = rawHex(status);
  return json;
}

std::vector<std::string> remarks(const Status& status) {
  std::vector<std::string> all = {status.offline != 0 ? "not ready: " + whyOffline(status)
                                                      : "ready to print"};
  if (const std::string errors = errorsIn(status); status.offline == 0 && !errors.empty()) {
    all.push_back("on line, but reports: " + errors);
  }
  for (const FlagField& field : flagFields) {
    if (status.*field.flag != 0 && !field.remark.empty()) {
      all.emplace_back(field.remark);
    }
  }
  if (status.presenterState != 0) {
    all.push_back("presenter: " + nameOf(presenterStates, status.presenterState));
  }
  if (status.connectedInterface != 0) {
    all.push_back("connected by " + nameOf(interfaces, status.connectedInterface));
  }
  return all;
}

std::string describe(const Status& status) {
  const auto all = remarks(status);
  std::string text = all.front() + ".\n";
  text.front() = static_cast<char>(std::toupper(text.front()));
  for (std::size_t i = 1; i < all.size(); ++i) {
    text += "  " + all[i] + "\n";
  }
  return text;
}

std::string describeEveryField(const Status& status) {
  std::string text;
  const auto append = [&text](std::string_view name, const std::string& value) {
    constexpr std::size_t column = 28;
    text += "  " + std::string(name) + std::string(column - name.size(), ' ') + value + "\n";
  };
  for (const FlagField& field : flagFields) {
    append(field.name, status.*field.flag != 0 ? "yes" : "no");
  }
  append("etbCounter", std::to_string(status.etbCounter));
  append("presenterState", nameOf(presenterStates, status.presenterState));
  append("connectedInterface", nameOf(interfaces, status.connectedInterface));
  append("raw", status.rawLength == 0 ? "none" : rawHex(status));
  return text;
}

}  // namespace quordalvane::tool
