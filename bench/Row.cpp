#include "bench/Row.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <utility>

namespace quordalvane::bench {

Row comparedRow(Heading heading, const Pairs<double>& pairs, Best best, double scale) {
  const auto bestOf = best == Best::Lowest ? lowest : highest;
  Figures ratios;
  for (std::size_t i = 0; i < pairs.ours.size(); ++i) {
    ratios.push_back(pairs.ours[i] / pairs.limit[i]);
  }
  return {.heading = std::move(heading),
          .ours = bestOf(pairs.ours) * scale,
          .limit = bestOf(pairs.limit) * scale,
          .spread = Spread{median(ratios), lowest(ratios), highest(ratios)}};
}

std::string figure(double value) {
  if (!std::isfinite(value)) {
    return "-";
  }
  const double size = std::abs(value);
  const int decimals = size == std::floor(size) || size >= 1000 ? 0 : size >= 100 ? 1 : 2;
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%.*f", decimals, value);
  return text.data();
}

}  // namespace quordalvane::bench
