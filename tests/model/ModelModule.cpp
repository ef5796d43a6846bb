#include <algorithm>
#include <cstdio>

#include "tests/model/ModelLog.h"
#include "tests/model/ModelReplies.h"

namespace quordalvane::test {
namespace {

const std::string succeeded = "\r\nOK\r\n";
const std::string failed = "\r\nERROR\r\n";

bool holds(const Bytes& chunk, const std::string& text) {
  return std::search(chunk.begin(), chunk.end(), text.begin(), text.end()) != chunk.end();
}

double fractional(const TimeValue& time) {
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

std::string sixDecimals(double value) {
  char text[64];
  std::snprintf(text, sizeof text, "%f", value);
  return text;
}

}  // namespace

bool Model::enterATMode() {
  const Log log(*this, "enterATMode");
  const auto end = [&log](bool result) {
    log.end("-> " + number(result));
    return result;
  };
  log.start("");
  platform_.clock().usleep(1000000);
  if (!sends(bytes("2f 2f 2f"))) {
    log.error("Fail to [self writeWithRetry:enterATModeCmd]: <self>, <address>");
    return end(false);
  }
  platform_.clock().usleep(1500000);
  if (!sends(ascii("AT*AILBA?\r"))) {
    log.error("Fail to [self writeWithRetry:getMACAddrCmd]: <self>, <address>");
    return end(false);
  }
  const auto address = getPrinterResponseWithSettingTitle("*AILBA:", 12, 10000);
  if (address && address->starts_with("*AILBA:")) {
    return end(true);
  }
  log.error("[getMACAddrResult hasPrefix:settingTitle] == NO): " + textOr(address) + ", *AILBA:");
  return end(false);
}

std::optional<std::string> Model::getPrinterResponseWithSettingTitle(
    std::optional<std::string> title, std::int32_t length, std::int32_t timeoutMillis) {
  const Log log(*this, "getPrinterResponseWithSettingTitle:settingLength:timeoutMillis:");
  const std::string entry = textOr(title) + ", " + number(length) + ", " + number(timeoutMillis);
  const auto end = [&](const std::string& result) {
    log.end(entry + ", -> " + result);
    return result;
  };
  const auto fail = [&](const std::string& error) -> std::optional<std::string> {
    log.error(error);
    log.end(entry + ", -> 0x0");
    return std::nullopt;
  };
  log.start(entry);
  const std::int32_t limit = timeoutMillis > 999 ? timeoutMillis / 1000 : 1;
  const double start = fractional(platform_.clock().gettimeofday());
  while (true) {
    const auto data = read(512);
    if (!data) {
      return fail("Fail to [[self read:512] retain]: <self>");
    }
    const std::string response = asciiDecoded(*data);
    log.process("printerResponse: " + response);
    if (holds(*data, failed)) {
      log.process("[printerResponse rangeOfString:responseNG2].location != NSNotFound, " +
                  response + ", " + failed);
      return end(failed);
    }
    if (holds(*data, succeeded)) {
      log.process("[printerResponse rangeOfString:responseOK2].location != NSNotFound, " +
                  response + ", " + succeeded);
      if (!title) {
        log.process("settingTitle == nil, 0x0");
        return end(succeeded);
      }
      const auto place = std::search(data->begin(), data->end(), title->begin(), title->end());
      if (length == 0) {
        log.process("settingLength == 0, 0");
      }
      const auto wanted = static_cast<std::int64_t>(title->size()) + length;
      if (place == data->end() || length < 0 || (length > 0 && data->end() - place < wanted)) {
        throw Raised{"std::out_of_range"};
      }
      return end(asciiDecoded({place, length == 0 ? data->end() : place + wanted}));
    }
    const double interval = fractional(platform_.clock().gettimeofday()) - start;
    if (interval > limit) {
      return fail("interval > TIMEOUT_SEC, " + sixDecimals(interval) + ", " + number(limit));
    }
    platform_.clock().usleep(200000);
  }
}

bool Model::disconnect() {
  const Log log(*this, "disconnect");
  log.start("");
  bool done = false;
  if (!enterATMode()) {
    log.error("Fail to [self enterATMode], <self>");
  } else if (!disconnectBluetoothConnection()) {
    log.error("Fail to [self disconnectBluetoothConnection], <self>");
  } else {
    done = true;
  }
  log.end("-> " + number(done));
  return done;
}

bool Model::disconnectBluetoothConnection() {
  const Log log(*this, "disconnectBluetoothConnection");
  const auto end = [&log](bool result) {
    log.end("-> " + number(result));
    return result;
  };
  log.start("");
  if (!sends(ascii("AT*AMWS=10,0,0,0,1,0\r"))) {
    log.error("Fail to [self writeWithRetry:disconnectData]: <self>, <address>");
    return end(false);
  }
  const std::int64_t start = second();
  while (true) {
    platform_.currentRunLoop().runUntilDate(0.1);
    if (accessory_) {
      accessory_->noticeLoss();
    }
    if (!isConnected()) {
      log.process("self.isConnected: ", [this] { return number(isConnected()); });
      return end(true);
    }
    if (isLate(log, start, limit_, "timeout_ / 1000")) {
      return end(false);
    }
    platform_.clock().usleep(200000);
  }
}

}  // namespace quordalvane::test
