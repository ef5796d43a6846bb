#include "tests/model/ModelLog.h"
#include "tests/model/ModelReplies.h"

namespace quordalvane::test {

bool Model::retrieveFirmwareInformation() {
  const Log log(*this, "retrieveFirmwareInformation");
  const std::string failure =
      "Fail to [self getParsedStatus:&status level:2], <self>, <address>, 2";
  const auto fail = [&log](const std::string& error) {
    log.error(error);
    log.end("-> 0");
    return false;
  };
  log.start("");
  QuorPrinterStatus_2 status{};
  try {
    if (!getParsedStatus(&status, 2)) {
      return fail(failure);
    }
    if (status.offline != 0) {
      return fail("status.offline, " + number(status.offline));
    }
  } catch (const Raised& raised) {
    constexpr std::string_view kind = "PortException: ";
    return fail(failure + ", " + raised.what.substr(kind.size()));
  }
  const bool done = creation_.emulation == 2 ? retrieveESCPOSFirmwareInformation()
                                             : retrieveFirmwareInformation2();
  log.end("-> " + number(done));
  return done;
}

/// Reads chunks until one of them holds the field; null after the time-out.
std::optional<Bytes> Model::askForField(const Log& log, const char* header, std::int32_t& location,
                                        bool (*find)(const Bytes&, std::int32_t&, std::int32_t&),
                                        std::int32_t& length) {
  const std::int64_t start = second();
  while (true) {
    location = length = 0;
    const auto data = read(128);
    if (data && find(*data, location, length)) {
      return data;
    }
    if (isLate(log, start, limit_, header)) {
      return std::nullopt;
    }
    platform_.clock().usleep(200000);
  }
}

bool Model::retrieveFirmwareInformation2() {
  const Log log(*this, "retrieveFirmwareInformation2");
  log.start("");
  if (!sends(bytes("1b 23 2a 0a 00"))) {
    log.error("Fail to [self writeWithRetry:fwRequest], <self>, <address>");
    log.end("-> 0");
    return false;
  }
  std::int32_t location = 0;
  std::int32_t length = 0;
  const auto data = askForField(log, "timeout_ / 1000", location, &findFirmware, length);
  if (data) {
    const Bytes field(data->begin() + location, data->begin() + location + length);
    log.process("Find FW Info, Position: " + number(location) + ", Raw: " + shown(field));
    firmware_ = asciiDecoded(field);
  }
  log.end("-> " + number(data.has_value()));
  return data.has_value();
}

bool Model::retrieveESCPOSFirmwareInformation() {
  const Log log(*this, "retrieveESCPOSFirmwareInformation");
  log.start("");
  if (!sends(bytes("1d 49 41"))) {
    log.error("Fail to [self writeWithRetry:modelRequestCommand], <self>, <address>");
    log.end("-> 0");
    return false;
  }
  const std::int64_t start = second();
  auto reply = read(128);
  while (!reply || reply->empty()) {
    if (isLate(log, start, limit_, "timeout_ / 1000")) {
      log.end("-> 0");
      return false;
    }
    platform_.clock().usleep(100000);
    reply = read(128);
  }
  if (reply->size() < 2) {
    throw Raised{"std::out_of_range"};
  }
  firmware_ = asciiDecoded({reply->begin() + 1, reply->end() - 1});
  log.process("_firmwareInformation: " + *firmware_);
  log.end("-> 1");
  return true;
}

bool Model::retrieveDipSwitchInformation() {
  const Log log(*this, "retrieveDipSwitchInformation");
  log.start("");
  for (const std::uint8_t bank : {std::uint8_t{1}, std::uint8_t{2}}) {
    const auto settings = retrieveDipSwitchInformation(bank);
    if (!settings) {
      log.error("Fail to [[self retrieveDipSwitchInformation:" + number(bank) +
                "] retain], <self>, " + number(bank));
      log.end("-> 0");
      return false;
    }
    banks_.push_back(*settings);
  }
  log.end("-> 1");
  return true;
}

std::optional<Bytes> Model::retrieveDipSwitchInformation(std::uint8_t bank) {
  const Log log(*this, "retrieveDipSwitchInformation:");
  const auto fail = [&]() -> std::optional<Bytes> {
    log.end(number(bank) + ", -> 0x0");
    return std::nullopt;
  };
  log.start(number(bank));
  if (!sends(bytes("1b 23 2c") + Bytes{static_cast<std::uint8_t>(0x30 + bank), 0x0a, 0x00})) {
    log.error("Fail to [self writeWithRetry:dipswRequest], <self>, <address>");
    return fail();
  }
  std::int32_t location = 0;
  std::int32_t length = 0;
  const auto data = askForField(log, "timeout_ / 1000", location, &findDipSwitches, length);
  if (!data) {
    return fail();
  }
  log.process("Find DIPSW Info, Position: " + number(location) +
              ", Raw: " + shown({data->data(), static_cast<std::size_t>(length)}));
  if (length != 2) {
    log.error("[parsedData length] != 2, " + number(length));
    return fail();
  }
  const Bytes settings(data->begin() + location, data->begin() + location + 2);
  log.end(number(bank) + ", -> " + shown(settings));
  return settings;
}

std::int64_t Model::retrieveButtonSecurityTimeout() {
  const Log log(*this, "retrieveButtonSecurityTimeout");
  log.start("");
  if (!sends(bytes("1b 23 2c 31 0a 00"))) {
    log.error("Fail to [self writeWithRetry:data], <self>, <address>");
    log.end("-> -1");
    return -1;
  }
  const std::int64_t start = second();
  second();  // the end
  Bytes reply;
  while (true) {
    reply = reply + read(7 - reply.size()).value_or(Bytes{});
    if (reply.size() == 7) {
      break;
    }
    if (isLate(log, start, limit_, "timeout_ / 1000")) {
      log.end("-> -1");
      return -1;
    }
    platform_.clock().usleep(200000);
  }
  const std::uint32_t fixed[] = {20000, 10000, 5000, 0};
  const unsigned setting = reply[4] >> 6U;
  log.end("-> " + number(fixed[setting]));
  return setting == 3 ? 0 : fixed[setting] + creation_.timeout;
}

}  // namespace quordalvane::test
