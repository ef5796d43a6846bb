#include "simulator/MultiByteText.h"

namespace quordalvane::simulator {
namespace {

const char* systemsName(MultiByte encoding, bool sevenBit) {
  switch (encoding) {
    case MultiByte::ShiftJis:
      return sevenBit ? "EUC-JP" : "CP932";
    case MultiByte::Gb18030:
      return "GB18030";
    case MultiByte::Big5:
      return "CP950";
    case MultiByte::EucKr:
      return "CP949";
    case MultiByte::None:
      break;
  }
  return "ASCII";
}

bool isWithin(std::uint8_t byte, unsigned first, unsigned last) {
  return byte >= first && byte <= last;
}

bool isSecond(MultiByte encoding, std::uint8_t byte) {
  switch (encoding) {
    case MultiByte::ShiftJis:
      return isWithin(byte, 0x40, 0x7e) || isWithin(byte, 0x80, 0xfc);
    case MultiByte::Gb18030:
      return isWithin(byte, 0x40, 0x7e) || isWithin(byte, 0x80, 0xfe);
    default:
      return isWithin(byte, 0x41, 0x7e) || isWithin(byte, 0x80, 0xfe);
  }
}

}  // namespace

MultiByteText::MultiByteText(MultiByte encoding, bool sevenBit)
    : encoding_(encoding),
      sevenBit_(sevenBit && encoding == MultiByte::ShiftJis),
      conversion_(systemsName(encoding, sevenBit_)) {}

bool MultiByteText::begins(std::uint8_t byte) const {
  if (sevenBit_) {
    return isWithin(byte, 0x21, 0x7e);
  }
  if (encoding_ == MultiByte::ShiftJis) {
    return isWithin(byte, 0x81, 0x9f) || isWithin(byte, 0xe0, 0xfc);
  }
  return encoding_ != MultiByte::None && isWithin(byte, 0x81, 0xfe);
}

std::size_t MultiByteText::lengthOf(ByteView bytes) const {
  if (!begins(bytes[0])) {
    return 0;
  }
  if (bytes.size() == 1) {
    return 2;
  }
  if (sevenBit_) {
    return begins(bytes[1]) ? 2 : 0;
  }
  // In a character of four bytes, the second and the fourth are digits.
  if (encoding_ == MultiByte::Gb18030 && isWithin(bytes[1], 0x30, 0x39)) {
    const bool goesOn = (bytes.size() < 3 || isWithin(bytes[2], 0x81, 0xfe)) &&
                        (bytes.size() < 4 || isWithin(bytes[3], 0x30, 0x39));
    return goesOn ? 4 : 0;
  }
  return isSecond(encoding_, bytes[1]) ? 2 : 0;
}

char32_t MultiByteText::characterOf(ByteView bytes) {
  if (!sevenBit_) {
    return conversion_.characterOf(bytes);
  }
  const Bytes eightBit = {static_cast<std::uint8_t>(bytes[0] | 0x80U),
                          static_cast<std::uint8_t>(bytes[1] | 0x80U)};
  return conversion_.characterOf(eightBit);
}

}  // namespace quordalvane::simulator
