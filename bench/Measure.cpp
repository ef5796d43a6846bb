#include "bench/Measure.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace quordalvane::bench {

double quantile(Figures figures, double share) {
  const auto last = static_cast<double>(figures.size() - 1);
  const auto place = figures.begin() + static_cast<std::ptrdiff_t>(std::lround(share * last));
  std::nth_element(figures.begin(), place, figures.end());
  return *place;
}

double median(Figures figures) {
  return quantile(std::move(figures), 0.5);
}

double lowest(const Figures& figures) {
  return *std::min_element(figures.begin(), figures.end());
}

double highest(const Figures& figures) {
  return *std::max_element(figures.begin(), figures.end());
}

double sum(const Figures& figures) {
  return std::accumulate(figures.begin(), figures.end(), 0.0);
}

}  // namespace quordalvane::bench
