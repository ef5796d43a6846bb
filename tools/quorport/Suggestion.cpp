#include "tools/quorport/Suggestion.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace quordalvane::tool {
namespace {

// Longer words are not compared: they match no name, and the work grows with the square of the
// length.
constexpr std::size_t longestWord = 40;

// Returns how many letters were left out, added, replaced, or exchanged with their neighbours.
std::size_t distance(std::string_view a, std::string_view b) {
  std::vector<std::vector<std::size_t>> table(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
  for (std::size_t i = 0; i <= a.size(); ++i) {
    for (std::size_t j = 0; j <= b.size(); ++j) {
      if (i == 0 || j == 0) {
        table[i][j] = i + j;
        continue;
      }
      const std::size_t mistaken = a[i - 1] == b[j - 1] ? 0 : 1;
      table[i][j] =
          std::min({table[i - 1][j] + 1, table[i][j - 1] + 1, table[i - 1][j - 1] + mistaken});
      if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
        table[i][j] = std::min(table[i][j], table[i - 2][j - 2] + 1);
      }
    }
  }
  return table[a.size()][b.size()];
}

std::size_t distanceOfMeaning(std::string_view word, std::string_view candidate) {
  constexpr std::size_t shortestBeginning = 3;
  const bool isBeginning = word.size() >= shortestBeginning && candidate.starts_with(word);
  return isBeginning ? 0 : distance(word, candidate);
}

}  // namespace

std::string suggestion(std::string_view word, const std::vector<std::string>& candidates) {
  std::pair<std::size_t, std::string> best = {1 + std::min<std::size_t>(2, word.size() / 3), ""};
  for (const std::string& candidate : candidates) {
    const std::size_t found =
        word.size() > longestWord ? best.first : distanceOfMeaning(word, candidate);
    if (found < best.first) {
      best = {found, candidate};
    }
  }
  return best.second;
}

}  // namespace quordalvane::tool
