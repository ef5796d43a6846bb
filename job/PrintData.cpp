#include "job/PrintData.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <string_view>

#include "job/Words.h"

namespace quordalvane {
namespace {

using Bytes = std::span<const std::uint8_t>;

bool startsWith(Bytes data, std::initializer_list<std::uint8_t> prefix) {
  return data.size() >= prefix.size() && std::equal(prefix.begin(), prefix.end(), data.begin());
}

std::size_t littleEndian(Bytes data, std::size_t at, std::size_t width) {
  std::size_t value = 0;
  for (std::size_t i = width; i > 0; --i) {
    value = value << 8 | data[at + i - 1];
  }
  return value;
}

/// The bytes of a command up to its payload, and the payload's size. A header that is itself cut
/// short by the end of the data has a size that cannot be reached.
struct CountedCommand {
  std::size_t header;
  std::size_t payload;
};

/// One row a command: its first bytes, how long its header is, and how the header counts the
/// payload.
struct CountedForm {
  std::initializer_list<std::uint8_t> prefix;
  std::size_t header;
  std::size_t (*payload)(Bytes command);
};

std::size_t bitImagePayload(Bytes command) {
  const std::size_t columns = littleEndian(command, 3, 2);
  const bool threeBytesAColumn = command[2] == 32 || command[2] == 33;
  return threeBytesAColumn ? columns * 3 : columns;
}

std::size_t rasterPayload(Bytes command) {
  return littleEndian(command, 4, 2) * littleEndian(command, 6, 2);
}

const CountedForm kCountedForms[] = {
    {{0x1d, 0x76, 0x30}, 8, rasterPayload},
    {{0x1b, 0x2a, 0}, 5, bitImagePayload},
    {{0x1b, 0x2a, 1}, 5, bitImagePayload},
    {{0x1b, 0x2a, 32}, 5, bitImagePayload},
    {{0x1b, 0x2a, 33}, 5, bitImagePayload},
    {{0x1d, 0x28}, 5, [](Bytes command) { return littleEndian(command, 3, 2); }},
    {{0x1d, 0x38, 0x4c}, 7, [](Bytes command) { return littleEndian(command, 3, 4); }},
};

constexpr std::uint8_t firstCountedBarcode = 65;
constexpr std::uint8_t lastTerminatedBarcode = 6;

std::optional<CountedCommand> barcodeAt(Bytes data) {
  if (!startsWith(data, {0x1d, 0x6b}) || data.size() < 3) {
    return std::nullopt;
  }
  if (data[2] >= firstCountedBarcode) {
    return data.size() < 4 ? CountedCommand{4, 0} : CountedCommand{4, data[3]};
  }
  if (data[2] <= lastTerminatedBarcode) {
    const auto content = data.subspan(3);
    const auto end = std::find(content.begin(), content.end(), std::uint8_t{0});
    return CountedCommand{3, static_cast<std::size_t>(end - content.begin()) + 1};
  }
  return std::nullopt;
}

std::optional<CountedCommand> countedCommandAt(Bytes data) {
  for (const auto& form : kCountedForms) {
    if (startsWith(data, form.prefix)) {
      return data.size() < form.header ? CountedCommand{form.header, 0}
                                       : CountedCommand{form.header, form.payload(data)};
    }
  }
  return barcodeAt(data);
}

/// In which emulation a command in the data stands in the way of a confirmation.
enum class Matters { Always, InLineMode };

struct Obstacle {
  std::initializer_list<std::uint8_t> bytes;
  Matters matters;
  std::string_view what;
};

// A request leaves a stray answer in the input. An ESC/POS report cannot be mistaken for one, but a
// line-mode status can be mixed with one.
const Obstacle kObstacles[] = {
    {{0x17}, Matters::Always, "an end-of-block mark (17), which the printer counts"},
    {{0x1b, 0x1d, 0x03}, Matters::Always, "a command of the checked block (1b 1d 03)"},
    {{0x1b, 0x1e, 0x45}, Matters::Always, "a reset of the printer's counter (1b 1e 45)"},
    {{0x1b, 0x06, 0x01}, Matters::InLineMode, "a status request (1b 06 01)"},
    {{0x1b, 0x23, 0x2a}, Matters::InLineMode, "a firmware request (1b 23 2a)"},
    {{0x1b, 0x23, 0x2c}, Matters::InLineMode, "a DIP-switch request (1b 23 2c)"},
    {{0x10, 0x04}, Matters::InLineMode, "a real-time status request (10 04)"},
    {{0x1d, 0x49}, Matters::InLineMode, "a request for the printer's name (1d 49)"},
};

std::string cutShort(std::size_t position) {
  return "the data ends inside the command that begins at byte " + grouped(position) +
         ", so that the printer takes the mark of the job's end for data";
}

/// Every command begins with a control character, and most of a job is text.
bool isText(std::uint8_t byte) {
  return byte >= 0x20;
}

bool isWhole(const CountedCommand& command, Bytes rest) {
  return rest.size() >= command.header && rest.size() - command.header >= command.payload;
}

}  // namespace

std::size_t commandEnd(std::span<const std::uint8_t> data, std::size_t position) {
  std::size_t end = 0;
  while (end < position) {
    if (isText(data[end])) {
      ++end;
      continue;
    }
    const Bytes rest = data.subspan(end);
    const auto command = countedCommandAt(rest);
    if (command && !isWhole(*command, rest)) {
      return data.size();
    }
    end += command ? command->header + command->payload : 1;
  }
  return end;
}

std::optional<std::string> confirmationObstacle(std::span<const std::uint8_t> data,
                                                ZKEmulation emulation) {
  const auto standsAt = [emulation](const Obstacle& obstacle, Bytes rest) {
    return (obstacle.matters == Matters::Always || emulation == ZKEmulationQuorLine) &&
           startsWith(rest, obstacle.bytes);
  };
  for (std::size_t position = 0; position < data.size();) {
    if (isText(data[position])) {
      ++position;
      continue;
    }
    const Bytes rest = data.subspan(position);
    if (const auto command = countedCommandAt(rest)) {
      if (!isWhole(*command, rest)) {
        return cutShort(position);
      }
      position += command->header + command->payload;
      continue;
    }
    const auto obstacle = std::find_if(std::begin(kObstacles), std::end(kObstacles),
                                       [&](const auto& row) { return standsAt(row, rest); });
    if (obstacle != std::end(kObstacles)) {
      return "the data itself holds " + std::string(obstacle->what) + " at byte " +
             grouped(position) + ", so that the printer's sign could be the data's own";
    }
    ++position;
  }
  return std::nullopt;
}

}  // namespace quordalvane
