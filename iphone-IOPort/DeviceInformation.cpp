// Queries for facts about the printer: firmware, DIP switches, button security.

#include <cstdint>
#include <utility>

#include "iphone-IOPort/Ascii.h"
#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "iphone-IOPort/LogStatement.h"
#include "iphone-IOPort/LogWriter.h"
#include "iphone-IOPort/Microseconds.h"
#include "iphone-IOPort/PortC.h"
#include "iphone-IOPort/Subrange.h"
#include "iphone-IOPort/WholeSeconds.h"

namespace quordalvane {
namespace {

constexpr std::size_t maxReplySize = 128;
constexpr std::int32_t modelPollMicroseconds = 100000;

constexpr std::uint8_t fwRequestBytes[] = {0x1b, 0x23, 0x2a, 0x0a, 0x00};
constexpr std::uint8_t MODEL_REQUEST_COMMAND[] = {0x1d, 0x49, 0x41};
constexpr std::uint8_t dipswRequestBytes[] = {0x1b, 0x23, 0x2c, 0x00, 0x0a, 0x00};
constexpr std::size_t bankDigit = 3;  // the index of the bank's number in the request above
constexpr std::uint8_t writeBuf[] = {0x1b, 0x23, 0x2c, 0x31, 0x0a, 0x00};

using ReplyParser = decltype(&parseFirmwareInfo);

/// Returns the range of the complete field that `parse` finds in `data`; null if `data` contains no
/// complete field. If there is no data, the parser is called with null and 0.
std::optional<Range> findField(ReplyParser parse, const std::optional<ByteBuffer>& data) {
  std::int32_t location = 0;
  std::int32_t length = 0;
  const std::uint8_t* bytes = data && !data->empty() ? data->data() : nullptr;
  const auto count = static_cast<std::int32_t>(data ? data->size() : 0);
  return parse(bytes, count, &location, &length) == 0 ? std::optional(Range{location, length})
                                                      : std::nullopt;
}

}  // namespace

bool ExternalAccessoryPort::retrieveFirmwareInformation() {
  constexpr auto selector = "-[ExternalAccessoryPort retrieveFirmwareInformation]";
  QUOR_LOG(ZKLogTypeInternalMethodStart, 0, "%@", "");
  QuorPrinterStatus_2 status = {};
  try {
    if (!getParsedStatus(&status, 2)) {
      QUOR_LOG(ZKLogTypeError, 0, "Fail to [self getParsedStatus:&status level:2], %p, %p, %d",
               this, &status, 2);
      QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "-> %d", false);
      return false;
    }
    if (status.offline != 0) {
      QUOR_LOG(ZKLogTypeError, 0, "status.offline, %d", status.offline);
      QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "-> %d", false);
      return false;
    }
  } catch (const PortException& exception) {
    QUOR_LOG(ZKLogTypeError, 0, "Fail to [self getParsedStatus:&status level:2], %p, %p, %d, %@",
             this, &status, 2, exception.what());
    QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "-> %d", false);
    return false;
  }
  const bool result = p_emulation == ZKEmulationESCPOS ? retrieveESCPOSFirmwareInformation()
                                                       : retrieveFirmwareInformation2();
  QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "-> %d", result);
  return result;
}

bool ExternalAccessoryPort::retrieveFirmwareInformation2() {
  constexpr auto selector = "-[ExternalAccessoryPort retrieveFirmwareInformation2]";
  QUOR_LOG(ZKLogTypeInternalMethodStart, 0, "%@", "");
  const ByteBuffer fwRequest(std::begin(fwRequestBytes), std::end(fwRequestBytes));
  if (!writeWhole(fwRequest, Reply::Possible)) {
    QUOR_LOG(ZKLogTypeError, 0, "Fail to [self writeWithRetry:fwRequest], %p, %p", this,
             &fwRequest);
    QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "-> %d", false);
    return false;
  }
  WholeSecondsWait wait(platform_->clock(), timeout_);
  auto data = read(maxReplySize);
  auto field = findField(parseFirmwareInfo, data);
  while (!field) {
    if (wait.isOver()) {
      QUOR_LOG(ZKLogTypeError, 0, "end.tv_sec - start.tv_sec > timeout_ / 1000, %ld, %ld, %d",
               wait.end(), wait.start(), wait.timeoutSec());
      QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "-> %d", false);
      return false;
    }
    usleep(replyPollMicroseconds);
    data = read(maxReplySize);
    field = findField(parseFirmwareInfo, data);
  }
  const ByteBuffer fwInfoData = subrange(data.value_or(ByteBuffer()), *field);
  QUOR_LOG(ZKLogTypeProcess, 0, "Find FW Info, Position: %d, Raw: %@", field->location,
           LogWriter::createByteArrayDescription(fwInfoData));
  _firmwareInformation.set(asciiText(fwInfoData));
  QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "-> %d", true);
  return true;
}

bool ExternalAccessoryPort::retrieveESCPOSFirmwareInformation() {
  constexpr auto selector = "-[ExternalAccessoryPort retrieveESCPOSFirmwareInformation]";
  QUOR_LOG(ZKLogTypeInternalMethodStart, 0, "%@", "");
  const ByteBuffer modelRequestCommand(std::begin(MODEL_REQUEST_COMMAND),
                                       std::end(MODEL_REQUEST_COMMAND));
  if (!writeWhole(modelRequestCommand, Reply::Possible)) {
    QUOR_LOG(ZKLogTypeError, 0, "Fail to [self writeWithRetry:modelRequestCommand], %p, %p", this,
             &modelRequestCommand);
    QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "-> %d", false);
    return false;
  }
  WholeSecondsWait wait(platform_->clock(), timeout_);
  auto receivedData = read(maxReplySize);
  while (!receivedData || receivedData->empty()) {
    if (wait.isOver()) {
      QUOR_LOG(ZKLogTypeError, 0, "end.tv_sec - start.tv_sec > timeout_ / 1000, %ld, %ld, %d",
               wait.end(), wait.start(), wait.timeoutSec());
      QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "-> %d", false);
      return false;
    }
    usleep(modelPollMicroseconds);
    receivedData = read(maxReplySize);
  }
  // The text lies between a header byte and a NUL. If only one byte arrived, this range does not
  // exist and `subrange` throws.
  const std::string rawString(receivedData->begin(), receivedData->end());
  const Range trimRange = {.location = 1,
                           .length = static_cast<std::int64_t>(rawString.length()) - 2};
  const std::string trimmedString = asciiText(subrange(rawString, trimRange));
  _firmwareInformation.set(trimmedString);
  QUOR_LOG(ZKLogTypeProcess, 0, "_firmwareInformation: %@", trimmedString);
  QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "-> %d", true);
  return true;
}

bool ExternalAccessoryPort::retrieveDipSwitchInformation() {
  constexpr auto selector = "-[ExternalAccessoryPort retrieveDipSwitchInformation]";
  QUOR_LOG(ZKLogTypeInternalMethodStart, 0, "%@", "");
  for (const std::uint8_t dipSwNumber : {std::uint8_t{1}, std::uint8_t{2}}) {
    auto bank = retrieveDipSwitchInformation(dipSwNumber);
    if (!bank) {
      QUOR_LOG(ZKLogTypeError, 0, "Fail to [[self retrieveDipSwitchInformation:%d] retain], %p, %d",
               dipSwNumber, this, dipSwNumber);
      QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "-> %d", false);
      return false;
    }
    // The list is never emptied; the newest pair is at its end.
    _dipSwitchInformation.update([&](auto& banks) { banks.push_back(std::move(*bank)); });
  }
  QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "-> %d", true);
  return true;
}

std::optional<ByteBuffer> ExternalAccessoryPort::retrieveDipSwitchInformation(
    std::uint8_t dipSwNumber) {
  constexpr auto selector = "-[ExternalAccessoryPort retrieveDipSwitchInformation:]";
  QUOR_LOG(ZKLogTypeInternalMethodStart, 0, "%d", dipSwNumber);
  auto parsedData = queryDipSwitchBank(dipSwNumber);
  if (parsedData) {
    QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%d, -> %@", dipSwNumber,
             LogWriter::createByteArrayDescription(*parsedData));
  } else {
    QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%d, -> %p", dipSwNumber, nullptr);
  }
  return parsedData;
}

std::optional<ByteBuffer> ExternalAccessoryPort::queryDipSwitchBank(std::uint8_t dipSwNumber) {
  constexpr auto selector = "-[ExternalAccessoryPort retrieveDipSwitchInformation:]";
  ByteBuffer dipswRequest(std::begin(dipswRequestBytes), std::end(dipswRequestBytes));
  dipswRequest[bankDigit] = static_cast<std::uint8_t>(0x30 + dipSwNumber);
  if (!writeWhole(dipswRequest, Reply::Possible)) {
    QUOR_LOG(ZKLogTypeError, 0, "Fail to [self writeWithRetry:dipswRequest], %p, %p", this,
             &dipswRequest);
    return std::nullopt;
  }
  WholeSecondsWait wait(platform_->clock(), timeout_);
  auto data = read(maxReplySize);
  auto field = findField(parseDipSwitchInfo, data);
  while (!field) {
    if (wait.isOver()) {
      QUOR_LOG(ZKLogTypeError, 0, "end.tv_sec - start.tv_sec > timeout_ / 1000, %ld, %ld, %d",
               wait.end(), wait.start(), wait.timeoutSec());
      return std::nullopt;
    }
    usleep(replyPollMicroseconds);
    data = read(maxReplySize);
    field = findField(parseDipSwitchInfo, data);
  }
  const ByteBuffer chunk = data.value_or(ByteBuffer());
  // The log record shows bytes from the start of the chunk, not from the start of the field,
  // because programs that read the log expect this.
  QUOR_LOG(ZKLogTypeProcess, 0, "Find DIPSW Info, Position: %d, Raw: %@", field->location,
           LogWriter::createByteArrayDescription(
               subrange(chunk, {.location = 0, .length = field->length})));
  auto parsedData = subrange(chunk, *field);
  if (parsedData.size() != 2) {
    QUOR_LOG(ZKLogTypeError, 0, "[parsedData length] != 2, %lu", parsedData.size());
    return std::nullopt;
  }
  return parsedData;
}

std::int64_t ExternalAccessoryPort::retrieveButtonSecurityTimeout() {
  constexpr auto selector = "-[ExternalAccessoryPort retrieveButtonSecurityTimeout]";
  constexpr std::size_t EXPECTED_RECV_SIZE = 7;
  QUOR_LOG(ZKLogTypeInternalMethodStart, 0, "%@", "");
  const ByteBuffer data(std::begin(writeBuf), std::end(writeBuf));
  if (!writeWhole(data, Reply::Possible)) {
    QUOR_LOG(ZKLogTypeError, 0, "Fail to [self writeWithRetry:data], %p, %p", this, &data);
    QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "-> %d", -1);
    return -1;
  }
  WholeSecondsWait wait(platform_->clock(), timeout_);
  wait.isOver();  // reads the clock once more before the wait; only this query does so
  ByteBuffer recvBuf;
  while (true) {
    const auto recvData = read(EXPECTED_RECV_SIZE - recvBuf.size()).value_or(ByteBuffer());
    recvBuf.insert(recvBuf.end(), recvData.begin(), recvData.end());
    if (recvBuf.size() == EXPECTED_RECV_SIZE) {
      break;
    }
    if (wait.isOver()) {
      // The last conversion is %u here. The other queries log the same text with %d.
      QUOR_LOG(ZKLogTypeError, 0, "end.tv_sec - start.tv_sec > timeout_ / 1000, %ld, %ld, %u",
               wait.end(), wait.start(), wait.timeoutSec());
      QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "-> %d", -1);
      return -1;
    }
    usleep(replyPollMicroseconds);
  }
  constexpr std::uint32_t settings[] = {20000, 10000, 5000, 0};
  const std::uint8_t dipSwSettingByte = recvBuf[4];
  const std::size_t timeoutByte = dipSwSettingByte >> 6;
  const std::uint32_t setting = settings[timeoutByte];
  QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "-> %d", setting);
  // A setting of 0 means that the printer's function "button security" is off. For any other
  // setting, the result is the setting plus the port's input/output time-out, modulo 2^32.
  return setting == 0 ? 0 : std::int64_t{static_cast<std::uint32_t>(setting + timeout_)};
}

}  // namespace quordalvane
