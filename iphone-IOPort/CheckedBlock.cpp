// The operations `beginCheckedBlock` and `endCheckedBlock`, which verify that a job is printed, and
// `startDataCancel`, which makes the printer drop its data.

#include <algorithm>
#include <array>
#include <cassert>

#include "iphone-IOPort/Commands.h"
#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "iphone-IOPort/LogStatement.h"
#include "iphone-IOPort/Microseconds.h"
#include "iphone-IOPort/PortC.h"
#include "iphone-IOPort/WholeSeconds.h"

namespace quordalvane {
namespace {

constexpr auto beginSelector = "-[ExternalAccessoryPort beginCheckedBlock:level:resultCode:]";
constexpr auto endSelector = "-[ExternalAccessoryPort endCheckedBlock:level:]";

// These commands mark the end of a job. The printer counts each mark after it has processed
// everything before the mark.
constexpr std::uint8_t etb[] = {0x17, 0x17};
constexpr std::uint8_t etbEscPos[] = {0x1b, 0x1d, 0x03, 0x01, 0x00, 0x00};

// These commands set the printer's count of marks to zero.
constexpr std::uint8_t etbReset[] = {0x1b, 0x1e, 0x45, 0x00};
constexpr std::uint8_t etbResetEscPos[] = {0x1b, 0x1d, 0x03, 0x02, 0x00, 0x00};

constexpr std::uint8_t reportStart = 0x1b;
constexpr std::size_t restDataSize = 7;
constexpr std::size_t reportedCount = 5;  // `afterBytes[5]` is the printer's count of marks

}  // namespace

bool ExternalAccessoryPort::beginCheckedBlock(QuorPrinterStatus_2* status, std::uint32_t level,
                                              std::int64_t* resultCode) {
  constexpr auto selector = beginSelector;
  assert(status != nullptr && resultCode != nullptr);
  QUOR_LOG(ZKLogTypeInternalMethodStart, 0, "%p, %d", status, level);
  *resultCode = ZKQuorIOResultCodeFailedError;
  WholeSecondsWait wait(platform_->clock(), timeout_);
  QUOR_LOG(ZKLogTypeProcess, 0, "p_emulation: %d", p_emulation);
  const bool result = prepareBlock(status, level, resultCode, wait);
  QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%p, %d, -> %d", status, level, result);
  return result;
}

bool ExternalAccessoryPort::prepareBlock(QuorPrinterStatus_2* status, std::uint32_t level,
                                         std::int64_t* resultCode, WholeSecondsWait& wait) {
  constexpr auto selector = beginSelector;
  const bool lineMode = p_emulation == ZKEmulationQuorLine;
  if (lineMode) {
    if (!getParsedStatus(status, 2)) {
      QUOR_LOG(ZKLogTypeError, 0, "Fail to [self getParsedStatus:status level:2]: %p, %p, %d", this,
               status, 2);
      return false;
    }
    if (status->offline != 0) {
      // The result code is a failure, because the block did not begin. The function still returns
      // true, because the exchange worked.
      QUOR_LOG(ZKLogTypeProcess, 0, "status->offline: %d", status->offline);
      return true;
    }
  }
  if (!resetCounter() ||
      !(lineMode ? awaitClearPath(status, resultCode, wait) : refreshStatus(status, level))) {
    return false;
  }
  setDataTimeout(status, level);
  const ByteBuffer dataCancelCommand(std::begin(dataCancel), std::end(dataCancel));
  if (!writeWhole(dataCancelCommand, Reply::None)) {
    QUOR_LOG(ZKLogTypeError, 0, "Fail to [self writeWithRetry:dataCancelCommand]: %p, %p", this,
             &dataCancelCommand);
    return false;
  }
  *resultCode = ZKQuorIOResultCodeSuccess;
  return true;
}

bool ExternalAccessoryPort::resetCounter() {
  constexpr auto selector = beginSelector;
  const ByteBuffer etbResetCommand =
      p_emulation == ZKEmulationQuorLine
          ? ByteBuffer(std::begin(etbReset), std::end(etbReset))
          : ByteBuffer(std::begin(etbResetEscPos), std::end(etbResetEscPos));
  if (!writeWhole(etbResetCommand, Reply::None)) {
    QUOR_LOG(ZKLogTypeError, 0, "Fail to [self writeWithRetry:etbResetCommand]: %p, %p", this,
             &etbResetCommand);
    return false;
  }
  return true;
}

/// In line mode, waits until the counter reads 0 and no paper is left in the exit. The wait also
/// ends, without an error, if the printer is off line. The time-out starts with the reset of the
/// counter.
bool ExternalAccessoryPort::awaitClearPath(QuorPrinterStatus_2* status, std::int64_t* resultCode,
                                           WholeSecondsWait& wait) {
  constexpr auto selector = beginSelector;
  wait.restart();
  while (isConnected()) {
    if (!getParsedStatus(status, 2)) {
      if (wait.isOver()) {
        QUOR_LOG(ZKLogTypeError, 0, "end.tv_sec - start.tv_sec > timeoutSec, %ld, %ld, %d",
                 wait.end(), wait.start(), wait.timeoutSec());
        return false;
      }
      usleep(microseconds(secInterval1()));
      continue;
    }
    if (status->offline == 1 || (status->etbCounter == 0 && status->paperPresent == 0)) {
      return true;
    }
    // Each pass of the loop chooses its limit anew: `holdPrintTimeoutMillis` while paper is in the
    // exit, and otherwise the port's input/output time-out. If somebody takes the paper after the
    // input/output time-out, the wait ends: with success if the printer's counter reads 0, and
    // otherwise with a failure.
    std::int32_t waitTimeoutSec = wait.timeoutSec();
    std::int64_t errorCode = ZKQuorIOResultCodeFailedError;
    if (status->paperPresent == 1) {
      waitTimeoutSec = static_cast<std::int32_t>(holdPrintTimeoutMillis() / 1000);
      errorCode = ZKQuorIOResultCodePaperPresentError;
    }
    if (wait.isOver(waitTimeoutSec)) {
      *resultCode = errorCode;
      QUOR_LOG(ZKLogTypeError, 0, "end.tv_sec - start.tv_sec > waitTimeout, %ld, %ld, %d",
               wait.end(), wait.start(), waitTimeoutSec);
      return false;
    }
    platform_->clock().select(microseconds(secInterval1()));
  }
  QUOR_LOG(ZKLogTypeError, 0, "self.isConnected: %d", isConnected());
  return false;
}

/// In ESC/POS, asks the printer for a status and stores it in the caller's record. The block
/// continues even if the printer does not give a status.
bool ExternalAccessoryPort::refreshStatus(QuorPrinterStatus_2* status, std::uint32_t level) {
  constexpr auto selector = beginSelector;
  if (!isConnected()) {
    QUOR_LOG(ZKLogTypeError, 0, "self.isConnected: %d", 0);
    return false;
  }
  getParsedStatus(status, level);
  return true;
}

void ExternalAccessoryPort::setDataTimeout(QuorPrinterStatus_2* status, std::uint32_t level) {
  constexpr auto selector = beginSelector;
  if (dataTimeoutSeconds() < 0) {
    return;
  }
  // Setting the data time-out is not an error. The log record keeps the type "error" because
  // programs that read the log expect this type.
  QUOR_LOG(ZKLogTypeError, 0, "self.dataTimeoutSeconds: %ld", dataTimeoutSeconds());
  const auto timeout = static_cast<std::uint8_t>(dataTimeoutSeconds() & 0xff);
  const std::uint8_t setDataTimeoutCommand[] = {0x1b, 0x1d, 0x03, 0x05, 0x01, timeout};
  const ByteBuffer setDataTimeoutCommandData(std::begin(setDataTimeoutCommand),
                                             std::end(setDataTimeoutCommand));
  if (!writeWhole(setDataTimeoutCommandData, Reply::None)) {
    QUOR_LOG(ZKLogTypeError, 0, "Fail to [self writeWithRetry:setDataTimeoutCommandData]: %p, %p",
             this, &setDataTimeoutCommandData);
    QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%p, %d", status, level);
    throw PortException("[beginCheckedBlock] Failed to set data cancel timeout");
  }
}

bool ExternalAccessoryPort::endCheckedBlock(QuorPrinterStatus_2* quorPrinterStatus,
                                            std::uint32_t level) {
  constexpr auto selector = endSelector;
  assert(quorPrinterStatus != nullptr);
  QUOR_LOG(ZKLogTypeInternalMethodStart, 0, "%p, %d", quorPrinterStatus, level);
  QUOR_LOG(ZKLogTypeProcess, 0, "p_emulation: %d", p_emulation);
  // The time of all waits of this function starts here, before anything is sent.
  WholeSecondsWait wait(platform_->clock(), endCheckedBlockTimeoutMillis());
  const bool result =
      markEnd() && (p_emulation == ZKEmulationQuorLine
                        ? awaitCount(quorPrinterStatus, level, wait)
                        : awaitReport(wait) && finalStatus(quorPrinterStatus, level));
  QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%p, %d, -> %d", quorPrinterStatus, level, result);
  return result;
}

bool ExternalAccessoryPort::markEnd() {
  constexpr auto selector = endSelector;
  const bool lineMode = p_emulation == ZKEmulationQuorLine;
  const ByteBuffer etbCommand = lineMode ? ByteBuffer(std::begin(etb), std::end(etb))
                                         : ByteBuffer(std::begin(etbEscPos), std::end(etbEscPos));
  // In line mode the printer only counts the mark. In ESC/POS the printer may answer the mark with
  // a report.
  if (!writeWhole(etbCommand, lineMode ? Reply::None : Reply::Possible)) {
    QUOR_LOG(ZKLogTypeError, 0, "Fail to [self writeWithRetry:etbCommand]: %p, %p", this,
             &etbCommand);
    return false;
  }
  return writeDataCancelEnd();
}

bool ExternalAccessoryPort::writeDataCancelEnd() {
  constexpr auto selector = endSelector;
  const ByteBuffer dataCancelEndCommand(std::begin(dataCancelEnd), std::end(dataCancelEnd));
  if (!writeWhole(dataCancelEndCommand, Reply::None)) {
    QUOR_LOG(ZKLogTypeError, 0, "Fail to [self writeWithRetry:dataCancelEndCommand]: %p, %p", this,
             &dataCancelEndCommand);
    return false;
  }
  return true;
}

bool ExternalAccessoryPort::endTimedOut(WholeSecondsWait& wait) {
  constexpr auto selector = endSelector;
  if (wait.isOver()) {
    QUOR_LOG(ZKLogTypeError, 0, "end.tv_sec - start.tv_sec > timeoutSec, %ld, %ld, %d", wait.end(),
             wait.start(), wait.timeoutSec());
    return true;
  }
  return false;
}

/// In line mode, waits until the counter reads 2 or the printer is off line.
bool ExternalAccessoryPort::awaitCount(QuorPrinterStatus_2* quorPrinterStatus, std::uint32_t level,
                                       WholeSecondsWait& wait) {
  constexpr auto selector = endSelector;
  while (true) {
    while (!getParsedStatus(quorPrinterStatus, level)) {
      if (endTimedOut(wait)) {
        return false;
      }
      usleep(microseconds(secInterval2()));
    }
    if (quorPrinterStatus->offline == 1) {
      // An off-line printer is no failure here: the caller decides what this means for the job.
      QUOR_LOG(ZKLogTypeProcess, 0, "quorPrinterStatus->offline: %d", quorPrinterStatus->offline);
      return true;
    }
    // This block sends exactly two ETBs. A higher count includes ETBs that others have sent.
    if (quorPrinterStatus->etbCounter == 2) {
      QUOR_LOG(ZKLogTypeProcess, 0, "quorPrinterStatus->etbCounter: %d",
               quorPrinterStatus->etbCounter);
      return true;
    }
    if (endTimedOut(wait)) {
      return false;
    }
    platform_->clock().select(microseconds(secInterval2()));
  }
}

/// In ESC/POS, waits until the printer reports the end of the block or answers that it is off line.
bool ExternalAccessoryPort::awaitReport(WholeSecondsWait& wait) {
  constexpr auto selector = endSelector;
  bool etbCountUp = false;
  while (true) {
    if (!writeDataCancelEnd() || !requestRealTimeStatus()) {
      return false;
    }
    auto topByte = awaitByte(wait);
    if (!topByte) {
      return false;
    }
    QUOR_LOG(ZKLogTypeProcess, 0, "topByte: %d", *topByte);
    if (*topByte == reportStart) {
      // Each pass of the loop reads at most one report. If a second report arrives instead of the
      // status byte, its first byte is not a status byte, and the next pass asks again.
      if (!readReport(etbCountUp) || !(topByte = awaitByte(wait))) {
        return false;
      }
    }
    QUOR_LOG(ZKLogTypeProcess, 0, "(topByte & 0x93): %d", *topByte & escPosFixedMask);
    QUOR_LOG(ZKLogTypeProcess, 0, "(topByte & 0x08): %d", *topByte & escPosOfflineBit);
    if ((*topByte & escPosFixedMask) != escPosFixedBits) {
      continue;  // not a status byte: asks again, without a time-out or a pause, by design
    }
    if (etbCountUp || (*topByte & escPosOfflineBit) != 0) {
      return true;
    }
    if (endTimedOut(wait)) {
      return false;
    }
    usleep(replyPollMicroseconds);
  }
}

bool ExternalAccessoryPort::requestRealTimeStatus() {
  constexpr auto selector = endSelector;
  const ByteBuffer statusRequestData(std::begin(statusRequest), std::end(statusRequest));
  if (!writeWhole(statusRequestData, Reply::Possible)) {
    QUOR_LOG(ZKLogTypeError, 0, "Fail to [self writeWithRetry:statusRequestData]: %p, %p", this,
             &statusRequestData);
    return false;
  }
  return true;
}

/// Returns the next byte of the input; null if the time-out passes.
std::optional<std::uint8_t> ExternalAccessoryPort::awaitByte(WholeSecondsWait& wait) {
  auto data = read(1);
  while (!data || data->empty()) {
    logEmptyRead(data);
    if (endTimedOut(wait)) {
      return std::nullopt;
    }
    usleep(replyPollMicroseconds);
    data = read(1);
  }
  return data->front();
}

void ExternalAccessoryPort::logEmptyRead(const std::optional<ByteBuffer>& data) {
  constexpr auto selector = endSelector;
  QUOR_LOG(ZKLogTypeProcess, 0, "data: %p", data ? &*data : nullptr);
  if (data) {
    QUOR_LOG(ZKLogTypeProcess, 0, "data.length: %lu", data->size());
  }
}

/// Reads the bytes after the first byte of a report. Returns false if these bytes cannot be read.
/// Bytes that are missing count as 0, so a report without its count is ignored.
bool ExternalAccessoryPort::readReport(bool& etbCountUp) {
  constexpr auto selector = endSelector;
  const auto rest = read(restDataSize);
  if (!rest) {
    QUOR_LOG(ZKLogTypeError, 0, "Fail to [[self read:restDataSize] retain]: %p, %d", this,
             restDataSize);
    return false;
  }
  std::array<std::uint8_t, restDataSize> afterBytes = {};
  std::copy_n(rest->begin(), std::min(rest->size(), restDataSize), afterBytes.begin());
  if (afterBytes[reportedCount] != 0) {
    etbCountUp = true;
    QUOR_LOG(ZKLogTypeProcess, 0, "etbCountUp: %d", 1);
  }
  return true;
}

bool ExternalAccessoryPort::finalStatus(QuorPrinterStatus_2* quorPrinterStatus,
                                        std::uint32_t level) {
  constexpr auto selector = endSelector;
  auto data = readLeftovers(1);
  while (data && !data->empty()) {
    data = readLeftovers(1);
  }
  logEmptyRead(data);
  if (!getParsedStatus(quorPrinterStatus, level)) {
    QUOR_LOG(ZKLogTypeError, 0,
             "Fail to [self getParsedStatus:quorPrinterStatus level:level]: %p, %p, %d", this,
             quorPrinterStatus, level);
    return false;
  }
  return true;
}

bool ExternalAccessoryPort::startDataCancel() {
  constexpr auto selector = "-[ExternalAccessoryPort startDataCancel]";
  QUOR_LOG(ZKLogTypeInternalMethodStart, 0, "%@", "");
  const ByteBuffer dataCancelCommand(std::begin(dataCancel), std::end(dataCancel));
  if (!writeWhole(dataCancelCommand, Reply::None)) {
    QUOR_LOG(ZKLogTypeError, 0, "Fail to [self writeWithRetry:dataCancelCommand], %p, %p", this,
             &dataCancelCommand);
    QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "-> %d", false);
    return false;
  }
  QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "-> %d", true);
  return true;
}

}  // namespace quordalvane
