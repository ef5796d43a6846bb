#include "tests/model/ModelReplies.h"

#include <algorithm>

namespace quordalvane::test {

#define FLAG(name) \
  { #name, &QuorPrinterStatus_2::name }
const Flag flags[30] = {FLAG(coverOpen),
                        FLAG(offline),
                        FLAG(compulsionSwitch),
                        FLAG(overTemp),
                        FLAG(unrecoverableError),
                        FLAG(cutterError),
                        FLAG(mechError),
                        FLAG(headThermistorError),
                        FLAG(receiveBufferOverflow),
                        FLAG(pageModeCmdError),
                        FLAG(paperDetectionError),
                        FLAG(blackMarkError),
                        FLAG(jamError),
                        FLAG(presenterPaperJamError),
                        FLAG(headUpError),
                        FLAG(voltageError),
                        FLAG(receiptBlackMarkDetection),
                        FLAG(receiptPaperEmpty),
                        FLAG(receiptPaperNearEmptyInner),
                        FLAG(receiptPaperNearEmptyOuter),
                        FLAG(paperPresent),
                        FLAG(presenterPaperPresent),
                        FLAG(peelerPaperPresent),
                        FLAG(stackerFull),
                        FLAG(slipTOF),
                        FLAG(slipCOF),
                        FLAG(slipBOF),
                        FLAG(validationPaperPresent),
                        FLAG(slipPaperPresent),
                        FLAG(etbAvailable)};
#undef FLAG

std::size_t statusLength(std::uint8_t firstByte) {
  return std::max(1U, firstByte & 0x3fU);
}

void decodeStatus(QuorPrinterStatus_2& status) {
  const auto byte = [&](std::size_t place) -> unsigned {
    return place < status.rawLength ? status.raw[place] : 0;
  };
  for (std::size_t flag = 0; flag < 30; ++flag) {
    status.*flags[flag].member = byte(2 + flag / 8) >> (flag % 8) & 1U;
  }
  status.etbCounter = static_cast<std::uint8_t>(byte(6));
  status.presenterState = static_cast<std::uint8_t>(byte(7));
  status.connectedInterface = static_cast<std::uint8_t>(byte(8));
}

bool decodeRealTimeStatus(QuorPrinterStatus_2& status, unsigned query) {
  const unsigned byte = status.raw[0];
  if ((byte & 0x93U) != 0x12U) {
    return false;
  }
  const auto any = [byte](unsigned bits) -> std::uint32_t { return (byte & bits) != 0 ? 1 : 0; };
  if (query == 0) {
    status.compulsionSwitch = any(0x04);
    status.offline = any(0x08);
  } else if (query == 1) {
    status.coverOpen = any(0x04);
  } else {
    status.receiptPaperNearEmptyInner = any(0x0c);
    status.receiptPaperEmpty = any(0x60);
  }
  return true;
}

bool isAnswered(const Bytes& command) {
  const std::vector<Bytes> silent = {bytes("17 17"), bytes("1b 1e 45 00"),
                                     bytes("1b 1d 03 02 00 00"), bytes("1b 1d 03 03 00 00"),
                                     bytes("1b 1d 03 04 00 00")};
  const bool setsDataTimeout = command.size() == 6 && std::equal(command.begin(), command.end() - 1,
                                                                 bytes("1b 1d 03 05 01").begin());
  return !setsDataTimeout && std::find(silent.begin(), silent.end(), command) == silent.end();
}

bool findFirmware(const Bytes& reply, std::int32_t& location, std::int32_t& length) {
  const Bytes head = bytes("1b 23 2a");
  const Bytes tail = bytes("0a 00");
  auto from = reply.begin();
  while (true) {
    from = std::search(from, reply.end(), head.begin(), head.end());
    if (from == reply.end()) {
      return false;
    }
    const auto first = from + 3;
    const auto last =
        std::find_if(first, reply.end(), [](std::uint8_t c) { return c < 0x20 || c > 0x7e; });
    const bool ends = reply.end() - last >= 2 && std::equal(tail.begin(), tail.end(), last);
    if (ends && last - first >= 1 && last - first <= 64) {
      location = static_cast<std::int32_t>(first - reply.begin());
      length = static_cast<std::int32_t>(last - first);
      return true;
    }
    ++from;
  }
}

bool findDipSwitches(const Bytes& reply, std::int32_t& location, std::int32_t& length) {
  std::size_t head = 0;
  const auto isHead = [&](std::size_t at) {
    return reply[at] == 0x1b && reply[at + 1] == 0x23 && reply[at + 2] == 0x2c &&
           (reply[at + 3] == 0x31 || reply[at + 3] == 0x32);
  };
  while (head + 4 <= reply.size() && !isHead(head)) {
    ++head;
  }
  const auto end = std::find(reply.rbegin(), reply.rend(), 0x0a);
  const auto behind =
      static_cast<std::size_t>(reply.rend() - end);  // the index of the last 0a, plus 1
  if (head + 4 > reply.size() || behind < head + 4 + 2 + 1) {
    return false;
  }
  location = static_cast<std::int32_t>(head + 4);
  length = static_cast<std::int32_t>(behind - 1 - head - 4);
  return true;
}

std::string asciiDecoded(const Bytes& bytes) {
  std::string text;
  for (const std::uint8_t byte : bytes) {
    text += byte < 0x80 ? std::string(1, static_cast<char>(byte)) : "\xef\xbf\xbd";
  }
  return text;
}

}  // namespace quordalvane::test
