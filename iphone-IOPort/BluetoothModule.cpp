// Operations on the printer's Bluetooth module: entering its command mode, reading its replies, and
// making it drop the link.

#include <stdexcept>

#include "iphone-IOPort/Ascii.h"
#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "iphone-IOPort/LogStatement.h"
#include "iphone-IOPort/Microseconds.h"
#include "iphone-IOPort/Subrange.h"
#include "iphone-IOPort/WholeSeconds.h"

namespace quordalvane {
namespace {

constexpr auto responseSelector =
    "-[ExternalAccessoryPort "
    "getPrinterResponseWithSettingTitle:settingLength:timeoutMillis:]";
constexpr std::string_view responseOK2 = "\r\nOK\r\n";
constexpr std::string_view responseNG2 = "\r\nERROR\r\n";
constexpr std::string_view getMACAddr = "AT*AILBA?\r";
constexpr std::size_t maxResponseSize = 512;
constexpr std::int32_t guardTimeBefore =
    1000000;  // microseconds of silence before and after the escape sequence
constexpr std::int32_t guardTimeAfter = 1500000;

ByteBuffer asciiBytes(std::string_view text) {
  return {text.begin(), text.end()};
}

double secondsBetween(TimeValue start, TimeValue end) {
  return static_cast<double>(end.tv_sec - start.tv_sec) +
         static_cast<double>(end.tv_usec - start.tv_usec) / 1e6;
}

}  // namespace

bool ExternalAccessoryPort::enterATMode() {
  constexpr auto selector = "-[ExternalAccessoryPort enterATMode]";
  QUOR_LOG(ZKLogTypeInternalMethodStart, 0, "%@", "");
  usleep(guardTimeBefore);
  const ByteBuffer enterATModeCmd = {0x2f, 0x2f, 0x2f};
  if (!writeWhole(enterATModeCmd, Reply::Possible)) {
    QUOR_LOG(ZKLogTypeError, 0, "Fail to [self writeWithRetry:enterATModeCmd]: %p, %p", this,
             &enterATModeCmd);
    QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "-> %d", false);
    return false;
  }
  usleep(guardTimeAfter);
  const ByteBuffer getMACAddrCmd = asciiBytes(getMACAddr);
  if (!writeWhole(getMACAddrCmd, Reply::Possible)) {
    QUOR_LOG(ZKLogTypeError, 0, "Fail to [self writeWithRetry:getMACAddrCmd]: %p, %p", this,
             &getMACAddrCmd);
    QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "-> %d", false);
    return false;
  }
  const std::string settingTitle = "*AILBA:";
  const auto getMACAddrResult = getPrinterResponseWithSettingTitle(settingTitle, 12, 10000);
  if (!getMACAddrResult || !getMACAddrResult->starts_with(settingTitle)) {
    QUOR_LOG(ZKLogTypeError, 0, "[getMACAddrResult hasPrefix:settingTitle] == NO): %@, %@",
             getMACAddrResult, settingTitle);
    QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "-> %d", false);
    return false;
  }
  QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "-> %d", true);
  return true;
}

std::optional<std::string> ExternalAccessoryPort::getPrinterResponseWithSettingTitle(
    // NOLINTNEXTLINE(performance-unnecessary-value-param): by value, as every text of the interface
    std::optional<std::string> settingTitle, std::int32_t settingLength,
    std::int32_t timeoutMillis) {
  constexpr auto selector = responseSelector;
  QUOR_LOG(ZKLogTypeInternalMethodStart, 0, "%@, %d, %d", settingTitle, settingLength,
           timeoutMillis);
  auto response = awaitResponse(settingTitle, settingLength, timeoutMillis);
  if (response) {
    QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%@, %d, %d, -> %@", settingTitle, settingLength,
             timeoutMillis, response);
  } else {
    QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%@, %d, %d, -> %p", settingTitle, settingLength,
             timeoutMillis, nullptr);
  }
  return response;
}

std::optional<std::string> ExternalAccessoryPort::awaitResponse(
    const std::optional<std::string>& settingTitle, std::int32_t settingLength,
    std::int32_t timeoutMillis) {
  constexpr auto selector = responseSelector;
  const std::int32_t TIMEOUT_SEC = timeoutMillis > 999 ? timeoutMillis / 1000 : 1;
  const TimeValue start = platform_->clock().gettimeofday();
  while (true) {
    const auto data = read(maxResponseSize);
    if (!data) {
      QUOR_LOG(ZKLogTypeError, 0, "Fail to [[self read:512] retain]: %p", this);
      return std::nullopt;
    }
    const std::string printerResponse(data->begin(), data->end());
    QUOR_LOG(ZKLogTypeProcess, 0, "printerResponse: %@", asciiText(printerResponse));
    if (auto response = responseIn(printerResponse, settingTitle, settingLength)) {
      return response;
    }
    const double interval = secondsBetween(start, platform_->clock().gettimeofday());
    if (interval > TIMEOUT_SEC) {
      QUOR_LOG(ZKLogTypeError, 0, "interval > TIMEOUT_SEC, %f, %d", interval, TIMEOUT_SEC);
      return std::nullopt;
    }
    usleep(replyPollMicroseconds);
  }
}

/// Returns the result that one chunk of the reply contains; null if the chunk contains no result.
/// If a chunk contains both an error and an OK, the error counts.
std::optional<std::string> ExternalAccessoryPort::responseIn(
    const std::string& printerResponse, const std::optional<std::string>& settingTitle,
    std::int32_t settingLength) {
  constexpr auto selector = responseSelector;
  if (printerResponse.find(responseNG2) != std::string::npos) {
    QUOR_LOG(ZKLogTypeProcess, 0,
             "[printerResponse rangeOfString:responseNG2].location != NSNotFound, %@, %@",
             asciiText(printerResponse), responseNG2);
    return std::string(responseNG2);
  }
  if (printerResponse.find(responseOK2) == std::string::npos) {
    return std::nullopt;
  }
  QUOR_LOG(ZKLogTypeProcess, 0,
           "[printerResponse rangeOfString:responseOK2].location != NSNotFound, %@, %@",
           asciiText(printerResponse), responseOK2);
  if (!settingTitle) {
    QUOR_LOG(ZKLogTypeProcess, 0, "settingTitle == nil, %p", nullptr);
    return std::string(responseOK2);
  }
  return settingIn(printerResponse, *settingTitle, settingLength);
}

std::string ExternalAccessoryPort::settingIn(const std::string& printerResponse,
                                             const std::string& settingTitle,
                                             std::int32_t settingLength) {
  constexpr auto selector = responseSelector;
  if (settingLength == 0) {
    QUOR_LOG(ZKLogTypeProcess, 0, "settingLength == 0, %d", settingLength);
  }
  const auto settingPos = printerResponse.find(settingTitle);
  if (settingPos == std::string::npos || settingLength < 0) {
    throw std::out_of_range("no setting of length " + std::to_string(settingLength) + " after \"" +
                            settingTitle + "\" in the module's reply");
  }
  const std::size_t length = settingLength == 0
                                 ? printerResponse.size() - settingPos
                                 : settingTitle.size() + static_cast<std::size_t>(settingLength);
  const std::string settingString =
      subrange(printerResponse, {.location = static_cast<std::int64_t>(settingPos),
                                 .length = static_cast<std::int64_t>(length)});
  return asciiText(settingString);
}

bool ExternalAccessoryPort::disconnect() {
  constexpr auto selector = "-[ExternalAccessoryPort disconnect]";
  QUOR_LOG(ZKLogTypeInternalMethodStart, 0, "%@", "");
  if (!enterATMode()) {
    QUOR_LOG(ZKLogTypeError, 0, "Fail to [self enterATMode], %p", this);
    QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "-> %d", false);
    return false;
  }
  if (!disconnectBluetoothConnection()) {
    QUOR_LOG(ZKLogTypeError, 0, "Fail to [self disconnectBluetoothConnection], %p", this);
    QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "-> %d", false);
    return false;
  }
  QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "-> %d", true);
  return true;
}

bool ExternalAccessoryPort::disconnectBluetoothConnection() {
  constexpr auto selector = "-[ExternalAccessoryPort disconnectBluetoothConnection]";
  QUOR_LOG(ZKLogTypeInternalMethodStart, 0, "%@", "");
  const ByteBuffer disconnectData = asciiBytes("AT*AMWS=10,0,0,0,1,0\r");
  if (!writeWhole(disconnectData, Reply::Possible)) {
    QUOR_LOG(ZKLogTypeError, 0, "Fail to [self writeWithRetry:disconnectData]: %p, %p", this,
             &disconnectData);
    QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "-> %d", false);
    return false;
  }
  WholeSecondsWait wait(platform_->clock(), timeout_);
  while (true) {
    platform_->currentRunLoop().runUntilDate(0.1);
    // The module may send bytes before it drops the link. Nobody reads these bytes, and
    // `isConnected` returns true while there are unread bytes. So this call drops them when the
    // link has ended.
    if (const auto accessory = _selectedAccessory.get()) {
      accessory->noticeLoss();
    }
    if (!isConnected()) {
      QUOR_LOG(ZKLogTypeProcess, 0, "self.isConnected: %d", isConnected());
      QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "-> %d", true);
      return true;
    }
    if (wait.isOver()) {
      QUOR_LOG(ZKLogTypeError, 0, "end.tv_sec - start.tv_sec > timeout_ / 1000, %ld, %ld, %d",
               wait.end(), wait.start(), wait.timeoutSec());
      QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "-> %d", false);
      return false;
    }
    usleep(replyPollMicroseconds);
  }
}

}  // namespace quordalvane
