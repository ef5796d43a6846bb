#include "iphone-IOPort/ExternalAccessoryPort.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>
#include <utility>

#include "iphone-IOPort/LogStatement.h"

namespace quordalvane {
namespace {

constexpr std::int64_t MAX_DATA_TIMEOUT = 255;

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

/// Returns the digits of the first match of "d[0-9]+"; null if nothing matches. The function uses
/// no regular expression: settings may have any length, and some engines overflow the stack on long
/// texts.
std::optional<std::string_view> firstDataTimeoutDigits(std::string_view settings) {
  for (std::size_t i = 0; i + 1 < settings.size(); ++i) {
    if (settings[i] == 'd' && isDigit(settings[i + 1])) {
      const auto digits = settings.substr(i + 1);
      const auto end = std::find_if_not(digits.begin(), digits.end(), isDigit);
      return digits.substr(0, static_cast<std::size_t>(end - digits.begin()));
    }
  }
  return std::nullopt;
}

std::int32_t saturatedNumber(std::string_view digits) {
  std::int32_t number = 0;
  const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  return result.ec == std::errc::result_out_of_range ? std::numeric_limits<std::int32_t>::max()
                                                     : number;
}

}  // namespace

struct ExternalAccessoryPort::Arguments {
  std::optional<std::string> portName;
  std::optional<std::string> portSettings;
  std::uint32_t ioTimeoutMillis;
  ZKEmulation emulation;
  std::shared_ptr<Platform> platform;
};

ExternalAccessoryPort::ExternalAccessoryPort(Arguments arguments)
    : platform_(std::move(arguments.platform)),
      portName_(std::move(arguments.portName)),
      portSettings_(std::move(arguments.portSettings)),
      timeout_(arguments.ioTimeoutMillis),
      p_emulation(arguments.emulation),
      _endCheckedBlockTimeoutMillis(arguments.ioTimeoutMillis) {}

std::shared_ptr<ExternalAccessoryPort> ExternalAccessoryPort::initWithPortName(
    std::optional<std::string> portName, std::optional<std::string> portSettings,
    std::uint32_t ioTimeoutMillis, ZKEmulation emulation, std::shared_ptr<Platform> platform) {
  auto port = std::make_shared<ExternalAccessoryPort>(
      Arguments{std::move(portName), std::move(portSettings), ioTimeoutMillis, emulation,
                std::move(platform)});
  // The caller never gets this port, so nobody can close it. `abandon` stops the port's thread and
  // releases its handle. Otherwise port and thread would keep each other alive.
  const auto abandon = [&port] {
    port->stopThread71 = true;
    port->setThread71(nullptr);
  };
  try {
    if (port->initialise()) {
      return port;
    }
  } catch (...) {
    abandon();
    throw;
  }
  abandon();
  return nullptr;
}

bool ExternalAccessoryPort::initialise() {
  constexpr auto selector =
      "-[ExternalAccessoryPort initWithPortName:portSettings:timeout:emulation:]";
  QUOR_LOG(ZKLogTypeInternalMethodStart, 0, "%@, %@, %d, %d", portName_, portSettings_, timeout_,
           p_emulation);
  if (platform_ == nullptr) {
    QUOR_LOG(ZKLogTypeError, 0, "self == nil, %p", nullptr);
    QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%@, %@, %d, %d, -> %p", portName_, portSettings_,
             timeout_, p_emulation, nullptr);
    return false;
  }
  // The constructor has set all members, so the thread never sees an unfinished port.
  if (platform_->isMainThread()) {
    QUOR_LOG(ZKLogTypeProcess, 0, "NSThread.isMainThread, %d", 1);
    if (!startPortThread()) {
      QUOR_LOG(ZKLogTypeError, 0, "Fail to [self.thread71 start], %p", nullptr);
      QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%@, %@, %d, %d, -> %p", portName_, portSettings_,
               timeout_, p_emulation, nullptr);
      return false;
    }
  }
  parseDataTimeoutOption();
  QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%@, %@, %d, %d, -> %p", portName_, portSettings_,
           timeout_, p_emulation, this);
  return true;
}

void ExternalAccessoryPort::parseDataTimeoutOption() {
  constexpr auto selector = "-[ExternalAccessoryPort parseDataTimeoutOption]";
  QUOR_LOG(ZKLogTypeInternalMethodStart, 0, "%@", "");
  setDataTimeoutSeconds(-1);
  const std::string_view settings = portSettings_ ? std::string_view(*portSettings_) : "";
  const auto digits = firstDataTimeoutDigits(settings);
  if (!digits) {
    QUOR_LOG(ZKLogTypeProcess, 0,
             "[regex matchesInString:portSettings_ options:0 range:NSMakeRange(0, "
             "portSettings_.length)].count == 0, %@, %@, %d, %d, %lu, %lu",
             "d[0-9]+", portSettings_, 0, 0, settings.size(), 0);
    QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%@", "");
    return;
  }
  const std::int64_t dataTimeout = saturatedNumber(*digits);
  if (dataTimeout > MAX_DATA_TIMEOUT) {
    QUOR_LOG(ZKLogTypeError, 0, "dataTimeout > MAX_DATA_TIMEOUT, %ld, %ld", dataTimeout,
             MAX_DATA_TIMEOUT);
    QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%@", "");
    return;
  }
  setDataTimeoutSeconds(dataTimeout);
  QUOR_LOG(ZKLogTypeProcess, 0, "dataTimeout: %ld", dataTimeout);
  QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%@", "");
}

}  // namespace quordalvane
