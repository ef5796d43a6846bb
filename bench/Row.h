#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "bench/Measure.h"

namespace quordalvane::bench {

/// The subject of a row, as the report shows it.
struct Heading {
  std::string id;
  std::string what;
  std::string goal;
  std::string unit;
};

/// How far the ratios of the pairs lie apart.
struct Spread {
  double median;
  double lowest;
  double highest;
};

/// One line of the report: ours beside the limit that was measured with it.
struct Row {
  Heading heading;
  double ours = 0;
  double limit = 0;
  std::optional<Spread> spread = std::nullopt;  // empty if the figures do not vary
  std::map<std::string, double> peers = {};     // other ways to the same end, in the row's unit

  /// 1 if both sides are zero.
  double ratio() const { return ours == limit ? 1 : ours / limit; }
};

using Rows = std::vector<Row>;

enum class Best { Lowest, Highest };

/// The best figure of each side, times `scale`, and the spread of the pairs.
Row comparedRow(Heading heading, const Pairs<double>& pairs, Best best, double scale = 1);

/// A cost as work grows: one line for each amount of work.
struct GrowthTable {
  std::string title;
  std::vector<std::string> columns;
  std::vector<std::vector<std::string>> lines;
};

/// A figure with as many decimals as are worth reading.
std::string figure(double value);

}  // namespace quordalvane::bench
