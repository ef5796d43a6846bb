#include "simulator/LackedCommands.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>

#include "text/Hex.h"
#include "text/Quoted.h"

namespace quordalvane::simulator {
namespace {

// Returns an empty result if the text is not two to four bytes in hex.
Bytes beginningIn(std::string_view text) {
  const bool isLong = text.size() >= 4 && text.size() <= 8 && text.size() % 2 == 0;
  Bytes bytes(isLong ? text.size() / 2 : 0);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    const char* const begin = text.data() + 2 * i;
    const auto [end, error] = std::from_chars(begin, begin + 2, bytes[i], 16);
    if (error != std::errc() || end != begin + 2) {
      return {};
    }
  }
  return bytes;
}

}  // namespace

LackedCommands LackedCommands::parse(std::string_view text) {
  LackedCommands lacked;
  std::string_view rest = text == "none" ? "" : text;
  while (!rest.empty()) {
    const std::string_view name = rest.substr(0, rest.find_first_of(" +"));
    rest.remove_prefix(std::min(name.size() + 1, rest.size()));
    if (name.empty()) {
      continue;
    }
    const Bytes beginning = beginningIn(name);
    if (beginning.empty()) {
      throw std::invalid_argument(
          "the key \"lacks\" takes \"none\" or the first bytes of commands, such as 1b4c+1d286b "
          "(two to four bytes each, in hex), not " +
          inQuotes(text));
    }
    lacked.beginnings_.push_back(beginning);
  }
  return lacked;
}

std::string LackedCommands::text() const {
  std::string text;
  for (const Bytes& beginning : beginnings_) {
    text += text.empty() ? "" : "+";
    text += hexText(beginning);
  }
  return text.empty() ? "none" : text;
}

bool LackedCommands::has(ByteView command) const {
  return std::any_of(beginnings_.begin(), beginnings_.end(), [&](const Bytes& beginning) {
    return command.size() >= beginning.size() &&
           std::equal(beginning.begin(), beginning.end(), command.begin());
  });
}

}  // namespace quordalvane::simulator
