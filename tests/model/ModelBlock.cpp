#include "tests/model/ModelLog.h"

namespace quordalvane::test {

bool Model::beginCheckedBlock(QuorPrinterStatus_2* status, std::uint32_t level,
                              std::int64_t* code) {
  const Log log(*this, "beginCheckedBlock:level:resultCode:");
  const std::string entry = log.at(status) + ", " + signed32(level);
  const auto end = [&](bool result) {
    log.end(entry + ", -> " + number(result));
    return result;
  };
  const auto fail = [&](const std::string& error) {
    log.error(error);
    return end(false);
  };
  const bool inLineMode = creation_.emulation == 1;
  log.start(entry);
  *code = -1;
  second();
  log.process("p_emulation: " + number(creation_.emulation));
  if (inLineMode) {
    if (!getParsedStatus(status, 2)) {
      return fail("Fail to [self getParsedStatus:status level:2]: <self>, " + log.at(status) +
                  ", 2");
    }
    if (status->offline != 0) {
      log.process("status->offline: " + number(status->offline));
      return end(true);
    }
  }
  if (!sends(inLineMode ? bytes("1b 1e 45 00") : bytes("1b 1d 03 02 00 00"))) {
    return fail("Fail to [self writeWithRetry:etbResetCommand]: <self>, <address>");
  }
  if (inLineMode) {
    if (!beginWait(log, status, code)) {
      return end(false);
    }
  } else {
    if (!isConnected()) {
      return fail("self.isConnected: 0");
    }
    getParsedStatus(status, level);
  }
  if (dataTimeoutSeconds_ >= 0) {
    log.error("self.dataTimeoutSeconds: " + number(dataTimeoutSeconds_));
    if (!sends(bytes("1b 1d 03 05 01") + Bytes{static_cast<std::uint8_t>(dataTimeoutSeconds_)})) {
      log.error("Fail to [self writeWithRetry:setDataTimeoutCommandData]: <self>, <address>");
      log.end(entry);
      throw Raised{"PortException: [beginCheckedBlock] Failed to set data cancel timeout"};
    }
  }
  if (!sends(bytes("1b 1d 03 03 00 00"))) {
    return fail("Fail to [self writeWithRetry:dataCancelCommand]: <self>, <address>");
  }
  *code = 0;
  return end(true);
}

bool Model::beginWait(const Log& log, QuorPrinterStatus_2* status, std::int64_t* code) {
  const std::int64_t start = second();
  while (true) {
    if (!isConnected()) {
      log.error("self.isConnected: ", [this] { return number(isConnected()); });
      return false;
    }
    if (!getParsedStatus(status, 2)) {
      const std::int64_t end = second();
      if (end - start > limit_) {
        log.error("end.tv_sec - start.tv_sec > timeoutSec, " + number(end) + ", " + number(start) +
                  ", " + number(limit_));
        return false;
      }
      platform_.clock().usleep(50000);
      continue;
    }
    if (status->offline == 1 || (status->etbCounter == 0 && status->paperPresent == 0)) {
      return true;
    }
    const bool isPaper = status->paperPresent == 1;
    const std::int32_t limit = isPaper ? static_cast<std::int32_t>(holdMillis_ / 1000) : limit_;
    const std::int64_t end = second();
    if (end - start > limit) {
      *code = isPaper ? -3 : -1;
      log.error("end.tv_sec - start.tv_sec > waitTimeout, " + number(end) + ", " + number(start) +
                ", " + number(limit));
      return false;
    }
    platform_.clock().select(50000);
  }
}

bool Model::endCheckedBlock(QuorPrinterStatus_2* status, std::uint32_t level) {
  const Log log(*this, "endCheckedBlock:level:");
  const std::string entry = log.at(status) + ", " + signed32(level);
  const bool inLineMode = creation_.emulation == 1;
  log.start(entry);
  log.process("p_emulation: " + number(creation_.emulation));
  const std::int64_t start = second();
  bool done = false;
  if (!sends(inLineMode ? bytes("17 17") : bytes("1b 1d 03 01 00 00"))) {
    log.error("Fail to [self writeWithRetry:etbCommand]: <self>, <address>");
  } else if (!sends(bytes("1b 1d 03 04 00 00"))) {
    log.error("Fail to [self writeWithRetry:dataCancelEndCommand]: <self>, <address>");
  } else {
    done = inLineMode ? endInLineMode(log, status, level, start)
                      : endInEscPos(log, status, level, start);
  }
  log.end(entry + ", -> " + number(done));
  return done;
}

bool Model::isLate(const Log& log, std::int64_t start, std::int32_t limit,
                   const std::string& limitName) {
  const std::int64_t end = second();
  if (end - start <= limit) {
    return false;
  }
  log.error("end.tv_sec - start.tv_sec > " + limitName + ", " + number(end) + ", " + number(start) +
            ", " + number(limit));
  return true;
}

bool Model::endInLineMode(const Log& log, QuorPrinterStatus_2* status, std::uint32_t level,
                          std::int64_t start) {
  const auto limit = static_cast<std::int32_t>(endMillis_ / 1000);
  while (true) {
    while (!getParsedStatus(status, level)) {
      if (isLate(log, start, limit, "timeoutSec")) {
        return false;
      }
      platform_.clock().usleep(100000);
    }
    if (status->offline == 1) {
      log.process("quorPrinterStatus->offline: 1");
      return true;
    }
    if (status->etbCounter == 2) {
      log.process("quorPrinterStatus->etbCounter: 2");
      return true;
    }
    if (isLate(log, start, limit, "timeoutSec")) {
      return false;
    }
    platform_.clock().select(100000);
  }
}

void Model::sayEmpty(const Log& log, const std::optional<Bytes>& data) {
  log.process(std::string("data: ") + (data ? someAddress : "0x0"));
  if (data) {
    log.process("data.length: " + std::to_string(data->size()));
  }
}

std::optional<std::uint8_t> Model::nextByte(const Log& log, std::int64_t start) {
  while (true) {
    const auto data = read(1);
    if (data && !data->empty()) {
      return data->front();
    }
    sayEmpty(log, data);
    if (isLate(log, start, static_cast<std::int32_t>(endMillis_ / 1000), "timeoutSec")) {
      return std::nullopt;
    }
    platform_.clock().usleep(200000);
  }
}

bool Model::isReported(const Log& log, std::int64_t start) {
  const auto limit = static_cast<std::int32_t>(endMillis_ / 1000);
  bool countedUp = false;
  while (true) {
    if (!sends(bytes("1b 1d 03 04 00 00"))) {
      log.error("Fail to [self writeWithRetry:dataCancelEndCommand]: <self>, <address>");
      return false;
    }
    if (!sends(bytes("10 04 01"))) {
      log.error("Fail to [self writeWithRetry:statusRequestData]: <self>, <address>");
      return false;
    }
    auto top = nextByte(log, start);
    if (!top) {
      return false;
    }
    log.process("topByte: " + number(*top));
    if (*top == 0x1b) {
      auto after = read(7);
      if (!after) {
        log.error("Fail to [[self read:restDataSize] retain]: <self>, 7");
        return false;
      }
      after->resize(7);
      if ((*after)[5] != 0) {
        countedUp = true;
        log.process("etbCountUp: 1");
      }
      top = nextByte(log, start);
      if (!top) {
        return false;
      }
    }
    log.process("(topByte & 0x93): " + number(*top & 0x93));
    log.process("(topByte & 0x08): " + number(*top & 0x08));
    if ((*top & 0x93) != 0x12) {
      continue;
    }
    if (countedUp || (*top & 0x08) != 0) {
      return true;
    }
    if (isLate(log, start, limit, "timeoutSec")) {
      return false;
    }
    platform_.clock().usleep(200000);
  }
}

bool Model::endInEscPos(const Log& log, QuorPrinterStatus_2* status, std::uint32_t level,
                        std::int64_t start) {
  if (!isReported(log, start)) {
    return false;
  }
  auto data = read(1, false);
  while (data && !data->empty()) {
    data = read(1, false);
  }
  sayEmpty(log, data);
  if (!getParsedStatus(status, level)) {
    log.error("Fail to [self getParsedStatus:quorPrinterStatus level:level]: <self>, " +
              log.at(status) + ", " + signed32(level));
    return false;
  }
  return true;
}

bool Model::startDataCancel() {
  const Log log(*this, "startDataCancel");
  log.start("");
  const bool sent = sends(bytes("1b 1d 03 03 00 00"));
  if (!sent) {
    log.error("Fail to [self writeWithRetry:dataCancelCommand], <self>, <address>");
  }
  log.end("-> " + number(sent));
  return sent;
}

}  // namespace quordalvane::test
