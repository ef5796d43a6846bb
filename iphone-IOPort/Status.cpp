// Asks for the printer's status, in both emulations, and tests whether the printer is on line.

#include <algorithm>
#include <cassert>

#include "iphone-IOPort/Commands.h"
#include "iphone-IOPort/ExternalAccessoryPort.h"
#include "iphone-IOPort/LogStatement.h"
#include "iphone-IOPort/LogWriter.h"
#include "iphone-IOPort/Microseconds.h"
#include "iphone-IOPort/PortC.h"
#include "iphone-IOPort/WholeSeconds.h"

namespace quordalvane {
namespace {

constexpr auto statusSelector = "-[ExternalAccessoryPort getParsedStatus:level:]";
constexpr std::size_t drainSize = 256;
constexpr int statusAttempts = 2;
constexpr int RETRY_COUNT = 10;
constexpr std::size_t MAX_STATUS_SIZE = 128;
constexpr auto lostConnection = "GetParsedStatus detected bluetooth disconnection";

constexpr std::uint8_t queryCashDrawerStatusCommand[] = {0x10, 0x04, 0x01};
constexpr std::uint8_t queryCoverOpenStatusCommand[] = {0x10, 0x04, 0x02};
constexpr std::uint8_t queryPaperEmptyStatusCommand[] = {0x10, 0x04, 0x04};

struct StatusQuery {
  std::span<const std::uint8_t> command;
  StatusType type;
  std::string_view name;
};

}  // namespace

const std::uint8_t escAckSoh[3] = {0x1b, 0x06, 0x01};

bool ExternalAccessoryPort::getParsedStatus(QuorPrinterStatus_2* quorPrinterStatus,
                                            std::uint32_t level) {
  constexpr auto selector = statusSelector;
  assert(quorPrinterStatus != nullptr);
  QUOR_LOG(ZKLogTypeInternalMethodStart, 0, "%p, %d", quorPrinterStatus, level);
  readLeftovers(drainSize);  // the result of the read is not needed
  QUOR_LOG(ZKLogTypeProcess, 0, "p_emulation: %d", p_emulation);
  bool result = false;
  if (p_emulation == ZKEmulationESCPOS) {
    result = getParsedStatusESCPOS(quorPrinterStatus, level);
  } else if (p_emulation == ZKEmulationQuorLine) {
    result = getParsedStatusQuorLine(quorPrinterStatus, level);
  }
  QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%p, %d, -> %d", quorPrinterStatus, level, result);
  return result;
}

bool ExternalAccessoryPort::getParsedStatusQuorLine(QuorPrinterStatus_2* quorPrinterStatus,
                                                    std::uint32_t level) {
  constexpr auto selector = statusSelector;
  const ByteBuffer commandData = {0x1b, 0x2a, 0x72, 0x42,              // prepare
                                  0x1b, 0x1d, 0x03, 0x04, 0x00, 0x00,  // data-cancel end
                                  0x1b, 0x06, 0x01};                   // status request
  for (int i = 0; i < statusAttempts; ++i) {
    if (!writeWhole(commandData, Reply::Possible)) {
      QUOR_LOG(ZKLogTypeError, 0, "Fail to [self writeWithRetry:commandData], %p, %p", this,
               &commandData);
      QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%p, %d", quorPrinterStatus, level);
      throw PortException("Native WritePort failed");
    }
    if (collectStatus(quorPrinterStatus, level)) {
      return true;
    }
  }
  return false;
}

/// Reads the reply to one attempt. Returns true if the record was filled from a complete reply.
bool ExternalAccessoryPort::collectStatus(QuorPrinterStatus_2* quorPrinterStatus,
                                          std::uint32_t level) {
  constexpr auto selector = statusSelector;
  ByteBuffer buffer;
  for (int j = 0; j < RETRY_COUNT; ++j) {
    if (!isConnected()) {
      QUOR_LOG(ZKLogTypeError, 0, "self.isConnected, %d", isConnected());
      QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%p, %d", quorPrinterStatus, level);
      throw PortException(lostConnection);
    }
    if (readStatusPiece(buffer, quorPrinterStatus)) {
      return true;
    }
    usleep(microseconds(secInterval1()));
  }
  return false;
}

/// Reads once and appends to `buffer`. Returns true if the reply is now complete; the record is
/// then filled, and bytes after the reply are dropped.
bool ExternalAccessoryPort::readStatusPiece(ByteBuffer& buffer,
                                            QuorPrinterStatus_2* quorPrinterStatus) {
  constexpr auto selector = statusSelector;
  const auto readBuffer = read(MAX_STATUS_SIZE);
  if (!readBuffer) {
    QUOR_LOG(ZKLogTypeProcess, 0, "readBuffer: %p", nullptr);
    return false;
  }
  if (readBuffer->empty()) {
    QUOR_LOG(ZKLogTypeProcess, 0, "readBuffer.length: %lu", readBuffer->size());
    return false;
  }
  buffer.insert(buffer.end(), readBuffer->begin(), readBuffer->end());
  const std::uint8_t* const statusBytes = buffer.data();
  const std::int32_t expectedSize = CalculateStatusLength(statusBytes[0]);
  if (expectedSize > static_cast<std::int32_t>(buffer.size())) {
    QUOR_LOG(ZKLogTypeProcess, 0, "buffer.length < expectedSize: %lu, %d", buffer.size(),
             expectedSize);
    return false;
  }
  std::copy_n(statusBytes, expectedSize, quorPrinterStatus->raw);
  quorPrinterStatus->rawLength = static_cast<std::uint32_t>(expectedSize);
  BuildParsedStatus(quorPrinterStatus);
  logReceivedStatus(*quorPrinterStatus);
  return true;
}

bool ExternalAccessoryPort::getParsedStatusESCPOS(QuorPrinterStatus_2* quorPrinterStatus,
                                                  std::uint32_t level) {
  quorPrinterStatus->coverOpen = 0;
  quorPrinterStatus->offline = 0;
  quorPrinterStatus->receiptPaperEmpty = 0;
  WholeSecondsWait wait(platform_->clock(), timeout_);  // the three queries share one time-out
  const ByteBuffer dataCancelEndCommand(std::begin(dataCancelEnd), std::end(dataCancelEnd));
  if (!writeStatusCommand(dataCancelEndCommand, Reply::None)) {
    return false;
  }
  const StatusQuery queries[] = {
      {queryCashDrawerStatusCommand, StatusType::CashDrawer, "CashDrawer"},
      {queryCoverOpenStatusCommand, StatusType::CoverOpen, "CoverOpen"},
      {queryPaperEmptyStatusCommand, StatusType::PaperEmpty, "PaperEmpty"},
  };
  return std::all_of(std::begin(queries), std::end(queries), [&](const StatusQuery& query) {
    const ByteBuffer command(query.command.begin(), query.command.end());
    return writeStatusCommand(command, Reply::Possible) &&
           awaitStatusByte(quorPrinterStatus, level, wait) &&
           applyStatusByte(quorPrinterStatus, query.type, query.name);
  });
}

bool ExternalAccessoryPort::writeStatusCommand(const ByteBuffer& command, Reply reply) {
  constexpr auto selector = statusSelector;
  if (!writeWhole(command, reply)) {
    QUOR_LOG(ZKLogTypeError, 0, "Fail to [self writeWithRetry:command], %p, %p", this, &command);
    return false;
  }
  return true;
}

/// Waits for the answer to one query and stores the answer in the record. Returns false if the
/// time-out passes.
bool ExternalAccessoryPort::awaitStatusByte(QuorPrinterStatus_2* quorPrinterStatus,
                                            std::uint32_t level, WholeSecondsWait& wait) {
  constexpr auto selector = statusSelector;
  while (isConnected()) {
    const auto receivedData = read(1);
    if (receivedData && !receivedData->empty()) {
      const std::uint8_t statusByte = receivedData->front();
      quorPrinterStatus->raw[0] = statusByte;
      quorPrinterStatus->rawLength = 1;
      logReceivedStatus(*quorPrinterStatus);
      return true;
    }
    QUOR_LOG(ZKLogTypeProcess, 0, "receivedData: %p", receivedData ? &*receivedData : nullptr);
    if (receivedData) {
      QUOR_LOG(ZKLogTypeProcess, 0, "receivedData.length: %lu", receivedData->size());
    }
    if (wait.isOver()) {
      QUOR_LOG(ZKLogTypeError, 0, "end.tv_sec - start.tv_sec > TIMEOUT_SEC, %ld, %ld, %d",
               wait.end(), wait.start(), wait.timeoutSec());
      return false;
    }
    usleep(replyPollMicroseconds);
  }
  QUOR_LOG(ZKLogTypeError, 0, "self.isConnected, %d", isConnected());
  QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%p, %d", quorPrinterStatus, level);
  throw PortException(lostConnection);
}

bool ExternalAccessoryPort::applyStatusByte(QuorPrinterStatus_2* quorPrinterStatus, StatusType type,
                                            std::string_view name) {
  constexpr auto selector = statusSelector;
  if (BuildParsedStatusESCPOS(quorPrinterStatus, type) == 0) {
    QUOR_LOG(ZKLogTypeError, 0, "Fail to BuildParsedStatusESCPOS(quorPrinterStatus, %@), %p, %d",
             name, quorPrinterStatus, type);
    return false;
  }
  return true;
}

void ExternalAccessoryPort::logReceivedStatus(const QuorPrinterStatus_2& status) {
  constexpr auto selector = statusSelector;
  QUOR_LOG(ZKLogTypeProcess, 0, "Receive Status, Length: %d, Raw: %@", status.rawLength,
           LogWriter::createByteArrayDescription(status.raw, status.rawLength));
}

bool ExternalAccessoryPort::getOnlineStatus(bool* onlineStatus) {
  constexpr auto selector = "-[ExternalAccessoryPort getOnlineStatus:]";
  assert(onlineStatus != nullptr);
  QUOR_LOG(ZKLogTypeInternalMethodStart, 0, "%p", onlineStatus);
  const ByteBuffer escAckSohCommand(std::begin(escAckSoh), std::end(escAckSoh));
  if (!writeWhole(escAckSohCommand, Reply::Possible)) {
    QUOR_LOG(ZKLogTypeError, 0, "Fail to [self writeWithRetry:escAckSohCommand], %p, %p", this,
             &escAckSohCommand);
    QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%p, -> %d", onlineStatus, false);
    return false;
  }
  // The record is not cleared first: every successful status query sets the only field that is read
  // here.
  QuorPrinterStatus_2 quorStatus;
  if (!getParsedStatus(&quorStatus, 2)) {
    QUOR_LOG(ZKLogTypeError, 0, "Fail to [self getParsedStatus:&quorStatus level:2], %p, %p, %d",
             this, &quorStatus, 2);
    *onlineStatus = false;
    QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%p, -> %d", onlineStatus, false);
    return false;
  }
  QUOR_LOG(ZKLogTypeProcess, 0, "quorStatus.offline: %d", quorStatus.offline);
  *onlineStatus = quorStatus.offline == 0;
  QUOR_LOG(ZKLogTypeInternalMethodEnd, 0, "%p, -> %d", onlineStatus, true);
  return true;
}

}  // namespace quordalvane
