#include "tools/quorport/doctor/Examination.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <memory>
#include <stdexcept>

#include "backends/DeviceSpec.h"
#include "backends/Devices.h"
#include "backends/Schemes.h"
#include "text/Hex.h"
#include "text/Quoted.h"
#include "tools/quorport/CommandFailure.h"
#include "tools/quorport/Printer.h"
#include "tools/quorport/StatusFields.h"
#include "tools/quorport/doctor/OpeningFindings.h"
#include "tools/quorport/doctor/StatusFindings.h"

namespace quordalvane::tool {
namespace {

// The longest time-out in milliseconds. Printers answer within milliseconds, and users do not want
// to wait for a diagnosis as long as for a receipt.
constexpr std::uint32_t longestTimeout = 1000;

// The result of one status query.
struct Answer {
  std::optional<Finding> notOpened;
  std::optional<QuorPrinterStatus_2> status;
  std::optional<ProofKind> proof;
  ByteBuffer bytes;        // the first bytes that arrived, understood or not
  std::string portReport;  // the last error that the port reported, if there is no status
  bool isLinkLost = false;
};

struct EmulationName {
  const char* text;
  const char* option;
};

EmulationName nameOf(ZKEmulation emulation) {
  return emulation == ZKEmulationESCPOS ? EmulationName{"ESC/POS", "escpos"}
                                        : EmulationName{"line mode", "line"};
}

Finding failedExchange(std::string_view cause, const std::string& text, const std::string& advice) {
  return {cause, ExitCode::ExchangeFailed, text, advice};
}

class Examination {
 public:
  Examination(const std::string& device, const Options& options, const Surroundings& surroundings,
              LiveLine& line)
      : spec_(parseDeviceSpec(device)),
        options_(options),
        surroundings_(surroundings),
        line_(line) {
    diagnosis_.device = device;
    options_.portName = "BT:";
    options_.timeout = std::min(options_.timeout, longestTimeout);
  }

  Diagnosis run() {
    for (const SchemeVariant& variant : variants()) {
      for (const ZKEmulation emulation : emulations()) {
        line_.show(diagnosis_.device + ": asking in " + nameOf(emulation).text + inWords(variant));
        const Answer answer = ask(variant.spec, emulation);
        if (answer.notOpened && !isLinkLost_ && !wasOpened_) {
          diagnosis_.findings.push_back(*answer.notOpened);
          return diagnosis_;
        }
        wasOpened_ = wasOpened_ || !answer.notOpened;
        if (answer.status) {
          diagnosis_.proof = answer.proof;
          diagnosis_.emulation = emulation;
          note(*answer.status, variant, emulation);
          return diagnosis_;
        }
        isLinkLost_ = isLinkLost_ || answer.isLinkLost;
        bytes_ = bytes_.empty() ? answer.bytes : bytes_;
        portReport_ = answer.portReport;
      }
    }
    diagnosis_.findings.push_back(whyNoStatus());
    return diagnosis_;
  }

 private:
  // Returns the settings of the device that `run` tries one after the other. The first element has
  // the settings in the device text.
  std::vector<SchemeVariant> variants() const {
    if (scheme_.variants != nullptr) {
      return scheme_.variants(spec_);
    }
    return {{.spec = spec_, .words = "", .keys = "", .cause = ""}};
  }

  static std::string inWords(const SchemeVariant& variant) {
    return variant.words.empty() ? "" : " " + variant.words;
  }

  std::array<ZKEmulation, 2> emulations() const {
    return options_.emulation == ZKEmulationESCPOS
               ? std::array{ZKEmulationESCPOS, ZKEmulationQuorLine}
               : std::array{ZKEmulationQuorLine, ZKEmulationESCPOS};
  }

  Answer ask(const DeviceSpec& spec, ZKEmulation emulation) {
    const auto platform = std::make_shared<InterruptiblePlatform>(surroundings_.interruption);
    const auto accessory = makeAccessory(spec, platform->clock());
    platform->attach(accessory, std::nullopt);
    Options options = options_;
    options.emulation = emulation;
    Answer answer;
    try {
      Printer printer(platform, options, surroundings_);
      answer = answerOf(printer);
    } catch (const CommandFailure& failure) {
      answer.isLinkLost = failure.code() == ExitCode::LinkLost;
      if (failure.code() == ExitCode::NoAccessory || !lastOpenError(*accessory).empty()) {
        answer.notOpened = whyNotOpened(spec, *accessory);
      }
    }
    return answer;
  }

  static Answer answerOf(Printer& printer) {
    constexpr std::size_t mostBytes = 16;
    Answer answer;
    PrinterInquiry inquiry(printer.port());
    try {
      answer.status = inquiry.status();
      if (answer.status->offline == 0) {  // a printer that is off line may delay its answers
        answer.proof = inquiry.proof();
      }
    } catch (const InquiryError& error) {
      answer.isLinkLost = error.cause() == InquiryCause::LinkLost;
      answer.portReport = printer.portReport();
    }
    answer.bytes = inquiry.heard();
    answer.bytes.resize(std::min(answer.bytes.size(), mostBytes));
    return answer;
  }

  void note(const QuorPrinterStatus_2& status, const SchemeVariant& variant,
            ZKEmulation emulation) {
    diagnosis_.status = status;
    diagnosis_.remarks = remarks(status);
    diagnosis_.remarks.insert(
        diagnosis_.remarks.begin(),
        std::string("answers in ") + nameOf(emulation).text + inWords(variant));
    if (!variant.keys.empty()) {
      diagnosis_.findings.push_back(failedExchange(
          variant.cause,
          "the printer answers " + variant.words + ", but was asked " + variants().front().words,
          "set " + variant.keys +
              " in the device, or change the printer's settings so that it answers " +
              variants().front().words));
    }
    if (emulation != options_.emulation && options_.emulation != ZKEmulationUnknown) {
      const EmulationName found = nameOf(emulation);
      const EmulationName given = nameOf(options_.emulation);
      diagnosis_.findings.push_back(failedExchange(
          "other-emulation",
          std::string("the printer answers in ") + found.text + " and not in " + given.text,
          std::string("use --emulation ") + found.option + ", or set the printer to " +
              given.text));
    }
    const Findings more = findingsIn(status);
    diagnosis_.findings.insert(diagnosis_.findings.end(), more.begin(), more.end());
  }

  Finding whyNoStatus() const {
    if (isLinkLost_) {
      return {"link-lost", ExitCode::LinkLost,
              "the link ends as soon as the printer is asked for its status",
              "the printer serves one program at a time: end the other program that uses it; if no "
              "other program uses it, switch the printer off and on"};
    }
    if (!bytes_.empty()) {
      return failedExchange("not-understood",
                            "the answer is not a receipt printer's: " + hexText(bytes_),
                            std::string(scheme_.ifNotUnderstood));
    }
    return failedExchange("silent", "the device can be opened, but does not answer" + portReport_,
                          std::string(scheme_.ifSilent));
  }

  const DeviceSpec spec_;
  const Scheme& scheme_ = *findScheme(spec_.scheme);
  Options options_;
  const Surroundings& surroundings_;
  LiveLine& line_;
  Diagnosis diagnosis_;
  bool isLinkLost_ = false;
  bool wasOpened_ = false;  // true if the device could be opened with some of the settings
  ByteBuffer bytes_;        // the bytes that arrived instead of a status
  std::string portReport_;
};

}  // namespace

Diagnosis examine(const std::string& device, const Options& options,
                  const Surroundings& surroundings, LiveLine& line) {
  try {
    return Examination(device, options, surroundings, line).run();
  } catch (const std::invalid_argument& error) {
    throw CommandFailure(ExitCode::Usage, options.devicesFrom + ": " + printable(error.what()));
  }
}

}  // namespace quordalvane::tool
