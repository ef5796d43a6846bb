#include "job/PrintData.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>

#include "job/PrintCommands.h"
#include "job/Words.h"

namespace quordalvane {
namespace {

/// The emulations in which a command in the data prevents a confirmation.
enum class Matters { Always, InLineMode };

/// If the data of a job contains this command, the job cannot be confirmed in the emulations that
/// `matters` names.
struct Obstacle {
  std::initializer_list<std::uint8_t> bytes;
  Matters matters;
  std::string_view what;
};

// A status request in the data causes an additional answer. In line mode this answer can be
// confused with the status that confirms the job. In ESC/POS this answer cannot be confused with
// the report that confirms the job.
const Obstacle obstacles[] = {
    {{0x17}, Matters::Always, "an end-of-block mark (17)"},
    {{0x1b, 0x1d, 0x03}, Matters::Always, "a command of the checked block (1b 1d 03)"},
    {{0x1b, 0x1e, 0x45}, Matters::Always, "a reset of the printer's counter (1b 1e 45)"},
    {{0x1b, 0x06, 0x01}, Matters::InLineMode, "a status request (1b 06 01)"},
    {{0x1b, 0x23, 0x2a}, Matters::InLineMode, "a firmware request (1b 23 2a)"},
    {{0x1b, 0x23, 0x2c}, Matters::InLineMode, "a DIP-switch request (1b 23 2c)"},
    {{0x10, 0x04}, Matters::InLineMode, "a real-time status request (10 04)"},
    {{0x1d, 0x49}, Matters::InLineMode, "a request for the printer's name (1d 49)"},
};

bool startsWith(ByteView data, std::initializer_list<std::uint8_t> prefix) {
  return data.size() >= prefix.size() && std::equal(prefix.begin(), prefix.end(), data.begin());
}

bool holds(ByteView data, std::initializer_list<std::uint8_t> bytes) {
  return std::search(data.begin(), data.end(), bytes.begin(), bytes.end()) != data.end();
}

/// Returns the command of `obstacles` with which `data` begins; null if `data` begins with none of
/// them.
const Obstacle* obstacleAt(ByteView data, ZKEmulation emulation) {
  const auto* const found =
      std::find_if(std::begin(obstacles), std::end(obstacles), [&](const Obstacle& obstacle) {
        return (obstacle.matters == Matters::Always || emulation == ZKEmulationQuorLine) &&
               startsWith(data, obstacle.bytes);
      });
  return found == std::end(obstacles) ? nullptr : found;
}

std::string cutShort(std::size_t position) {
  return "the data ends inside the command that begins at byte " + grouped(position) +
         ", so that the printer reads the end-of-block mark as a part of this command";
}

std::string obstructed(const Obstacle& obstacle, std::size_t position,
                       std::optional<std::size_t> unknown) {
  return "the data contains " + std::string(obstacle.what) + " at byte " + grouped(position) +
         "; this could itself cause the printer's confirmation" +
         (unknown ? " (the command at byte " + grouped(*unknown) +
                        " is unknown, so that any byte after it may be a command)"
                  : "");
}

/// No command begins with a byte above this one. Most bytes of a job are text. The bytes of text
/// are above this byte and are skipped quickly.
constexpr std::uint8_t highestFirstByte = 0x1d;

bool isText(std::uint8_t byte) {
  return byte > highestFirstByte;
}

constexpr std::size_t mostLookedThrough = std::size_t{1} << 20U;

/// The first bytes of the commands that a printer may answer. If a command has several functions, a
/// printer may answer only some of them.
const std::initializer_list<std::uint8_t> answeredCommands[] = {
    {0x05},       {0x10},       {0x1b, 0x06}, {0x1b, 0x1d, 0x03}, {0x1b, 0x23},
    {0x1b, 0x75}, {0x1b, 0x76}, {0x1c, 0x28}, {0x1c, 0x67},       {0x1d, 0x28},
    {0x1d, 0x49}, {0x1d, 0x61}, {0x1d, 0x67}, {0x1d, 0x72},
};

/// Returns true if the command belongs to two-dimensional barcodes and a printer does not answer
/// this command. A printer answers only the function that asks for the size of the barcode.
bool isSilentSymbol(ByteView command) {
  constexpr std::size_t function = 6;
  return startsWith(command, {0x1d, 0x28, 0x6b}) && command.size() > function &&
         command[function] != 0x52;
}

/// Commands whose answers contain bytes that look like an in-order status. The command that
/// requests an in-order status is not in this list.
const std::initializer_list<std::uint8_t> similarlyAnswered[] = {
    {0x1b, 0x06}, {0x1b, 0x23}, {0x1b, 0x75}, {0x1b, 0x76}, {0x1d, 0x28, 0x45}, {0x1d, 0x49},
};

/// Returns true for a command that asks about stored graphics.
bool isGraphicsQuestion(ByteView command) {
  constexpr std::uint8_t questions[] = {0x00, 0x03, 0x04, 0x30, 0x33, 0x34, 0x40, 0x50};
  constexpr std::size_t function = 6;
  return startsWith(command, {0x1d, 0x28, 0x4c}) && command.size() > function &&
         std::ranges::find(questions, command[function]) != std::end(questions);
}

bool isSimilarlyAnswered(ByteView command) {
  return isGraphicsQuestion(command) ||
         (startsWith(command, {0x1d, 0x28, 0x6b}) && !isSilentSymbol(command)) ||
         std::any_of(std::begin(similarlyAnswered), std::end(similarlyAnswered),
                     [&](const auto& prefix) { return startsWith(command, prefix); });
}

bool mayBeAnswered(ByteView command) {
  return !isSilentSymbol(command) &&
         std::any_of(std::begin(answeredCommands), std::end(answeredCommands),
                     [&](const auto& prefix) { return startsWith(command, prefix); });
}

}  // namespace

bool isNeverAnswered(ByteView data) {
  if (data.size() > mostLookedThrough) {
    return false;
  }
  for (std::size_t position = 0; position < data.size();) {
    const ByteView rest = data.subspan(position);
    if (isText(rest.front())) {
      ++position;
      continue;
    }
    const auto command = printCommandAt(rest);
    if (!command || command->length > rest.size() || mayBeAnswered(rest)) {
      return false;
    }
    position += command->length;
  }
  return true;
}

std::size_t commandEnd(ByteView data, std::size_t position) {
  std::size_t end = 0;
  while (end < position) {
    const auto command = printCommandAt(data.subspan(end));
    if (!command) {
      return position;
    }
    end += std::min(command->length, data.size() - end);
  }
  return end;
}

std::optional<std::string> confirmationObstacle(ByteView data, ZKEmulation emulation) {
  std::optional<std::size_t> unknown;  // the position of the first unknown command
  std::size_t next = 0;                // the position of the next command
  for (std::size_t position = 0; position < data.size(); ++position) {
    if (isText(data[position])) {
      next = std::max(next, position + 1);
      continue;
    }
    const ByteView rest = data.subspan(position);
    if (position == next && !unknown) {
      const auto command = printCommandAt(rest);
      if (!command) {
        unknown = position;
      } else if (command->length > rest.size()) {
        return cutShort(position);
      } else {
        next += command->length;
        if (command->isCounted) {
          position = next - 1;
          continue;
        }
      }
    }
    if (const auto* const obstacle = obstacleAt(rest, emulation)) {
      return obstructed(*obstacle, position, unknown);
    }
  }
  return std::nullopt;
}

std::optional<std::string> endSignObstacle(ByteView data) {
  constexpr auto dropsData =
      "the data contains a command that makes the printer drop unprinted data";
  // A real-time command takes effect wherever its bytes are in the data.
  if (holds(data, {0x10, 0x14, 0x08})) {
    return dropsData;
  }
  const std::initializer_list<std::uint8_t> blockCommand = {0x1b, 0x1d, 0x03};
  for (std::size_t next = 0; next < data.size();) {
    const ByteView rest = data.subspan(next);
    const auto command = printCommandAt(rest);
    if (command && command->length > rest.size()) {
      return cutShort(next);
    }
    const std::size_t length = command ? command->length : rest.size();
    const std::size_t looked = std::min(length + blockCommand.size() - 1, rest.size());
    if (!(command && command->isCounted) && holds(rest.first(looked), blockCommand)) {
      return dropsData;
    }
    next += length;
  }
  return std::nullopt;
}

std::optional<std::uint64_t> inOrderRequestsIn(ByteView data) {
  std::uint64_t count = 0;
  for (std::size_t next = 0; next < data.size();) {
    const ByteView rest = data.subspan(next);
    const auto command = printCommandAt(rest);
    if (isSimilarlyAnswered(rest)) {
      return std::nullopt;
    }
    if (!command) {
      // A known command may begin inside an unknown command.
      const bool mayHoldAnother = std::any_of(rest.begin() + 1, rest.end(), [](std::uint8_t byte) {
        return byte == 0x1b || byte == 0x1d;
      });
      return mayHoldAnother ? std::nullopt : std::optional(count);
    }
    count += startsWith(rest, {0x1d, 0x72}) ? 1U : 0U;
    next += std::min(command->length, rest.size());
  }
  return count;
}

}  // namespace quordalvane
