#include <algorithm>

#include "tests/model/ModelLog.h"
#include "tests/model/ModelReplies.h"

namespace quordalvane::test {
namespace {

const char* const lostDuringStatus =
    "PortException: GetParsedStatus detected bluetooth disconnection";

std::string received(const QuorPrinterStatus_2& status) {
  return "Receive Status, Length: " + number(status.rawLength) +
         ", Raw: " + shown({status.raw, status.rawLength});
}

}  // namespace

bool Model::getParsedStatus(QuorPrinterStatus_2* status, std::uint32_t level) {
  const Log log(*this, "getParsedStatus:level:");
  const std::string entry = log.at(status) + ", " + signed32(level);
  log.start(entry);
  read(256, false);
  log.process("p_emulation: " + number(creation_.emulation));
  bool done = false;
  if (creation_.emulation == 2) {
    done = escposStatus(log, status, entry);
  } else if (creation_.emulation == 1) {
    done = lineStatus(log, status, entry);
  }
  log.end(entry + ", -> " + number(done));
  return done;
}

bool Model::lineStatus(const Log& log, QuorPrinterStatus_2* status, const std::string& entry) {
  for (int attempt = 0; attempt < 2; ++attempt) {
    if (!sends(bytes("1b 2a 72 42 1b 1d 03 04 00 00 1b 06 01"))) {
      log.error("Fail to [self writeWithRetry:commandData], <self>, <address>");
      log.end(entry);
      throw Raised{"PortException: Native WritePort failed"};
    }
    if (lineReply(log, status, entry)) {
      return true;
    }
  }
  return false;
}

bool Model::lineReply(const Log& log, QuorPrinterStatus_2* status, const std::string& entry) {
  Bytes buffer;
  for (int reads = 0; reads < 10; ++reads) {
    if (!isConnected()) {
      log.error("self.isConnected, ", [this] { return number(isConnected()); });
      log.end(entry);
      throw Raised{lostDuringStatus};
    }
    const auto piece = read(128);
    if (!piece) {
      log.process("readBuffer: 0x0");
    } else if (piece->empty()) {
      log.process("readBuffer.length: 0");
    } else {
      buffer = buffer + *piece;
      const std::size_t expected = statusLength(buffer[0]);
      if (expected <= buffer.size()) {
        std::copy_n(buffer.begin(), expected, status->raw);
        status->rawLength = static_cast<std::uint32_t>(expected);
        decodeStatus(*status);
        log.process(received(*status));
        return true;
      }
      log.process("buffer.length < expectedSize: " + std::to_string(buffer.size()) + ", " +
                  std::to_string(expected));
    }
    platform_.clock().usleep(50000);
  }
  return false;
}

bool Model::escposStatus(const Log& log, QuorPrinterStatus_2* status, const std::string& entry) {
  status->coverOpen = status->offline = status->receiptPaperEmpty = 0;
  const std::int64_t start = second();
  if (!sends(bytes("1b 1d 03 04 00 00"))) {
    log.error("Fail to [self writeWithRetry:command], <self>, <address>");
    return false;
  }
  return escposQuery(log, status, entry, 0, start) && escposQuery(log, status, entry, 1, start) &&
         escposQuery(log, status, entry, 2, start);
}

bool Model::escposQuery(const Log& log, QuorPrinterStatus_2* status, const std::string& entry,
                        unsigned type, std::int64_t start) {
  const char* const names[] = {"CashDrawer", "CoverOpen", "PaperEmpty"};
  const std::uint8_t codes[] = {1, 2, 4};
  if (!sends({0x10, 0x04, codes[type]})) {
    log.error("Fail to [self writeWithRetry:command], <self>, <address>");
    return false;
  }
  bool answered = false;
  while (!answered && isConnected()) {
    const auto data = read(1);
    if (data && !data->empty()) {
      status->raw[0] = data->front();
      status->rawLength = 1;
      log.process(received(*status));
      answered = true;
      continue;
    }
    log.process(std::string("receivedData: ") + (data ? someAddress : "0x0"));
    if (data) {
      log.process("receivedData.length: 0");
    }
    const std::int64_t end = second();
    if (end - start > limit_) {
      log.error("end.tv_sec - start.tv_sec > TIMEOUT_SEC, " + number(end) + ", " + number(start) +
                ", " + number(limit_));
      return false;
    }
    platform_.clock().usleep(200000);
  }
  if (!answered) {
    log.error("self.isConnected, ", [this] { return number(isConnected()); });
    log.end(entry);
    throw Raised{lostDuringStatus};
  }
  if (!decodeRealTimeStatus(*status, type)) {
    log.error("Fail to BuildParsedStatusESCPOS(quorPrinterStatus, " + std::string(names[type]) +
              "), " + log.at(status) + ", " + number(type));
    return false;
  }
  return true;
}

bool Model::getOnlineStatus(bool* onlineStatus) {
  const Log log(*this, "getOnlineStatus:");
  const std::string entry = log.at(onlineStatus);
  const auto end = [&](bool result) {
    log.end(entry + ", -> " + number(result));
    return result;
  };
  log.start(entry);
  if (!sends(bytes("1b 06 01"))) {
    log.error("Fail to [self writeWithRetry:escAckSohCommand], <self>, <address>");
    return end(false);
  }
  QuorPrinterStatus_2 status{};
  if (!getParsedStatus(&status, 2)) {
    log.error("Fail to [self getParsedStatus:&quorStatus level:2], <self>, <address>, 2");
    *onlineStatus = false;
    return end(false);
  }
  log.process("quorStatus.offline: " + number(status.offline));
  *onlineStatus = status.offline == 0;
  return end(true);
}

}  // namespace quordalvane::test
