#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "bench/Measure.h"

namespace quordalvane::bench {

/// The description of a row in the report.
struct Heading {
  std::string id;
  std::string what;
  std::string goal;
  std::string unit;
};

/// The spread of the ratios. Each pair of measurements (see `Pairs`) has one ratio: the result of
/// our code divided by the result of the code with which it is compared.
struct Spread {
  double median;
  double lowest;
  double highest;
};

/// One line of the report: our figure, and the figure with which it is compared (`limit`).
struct Row {
  Heading heading;
  double ours = 0;
  double limit = 0;
  std::optional<Spread> spread = std::nullopt;  // empty if the row compares no pairs
  // The figures of other programs for the work of this row, by the program's name, in the row's
  // unit.
  std::map<std::string, double> peers = {};

  /// Returns `ours` divided by `limit`; 1 if both are zero.
  double ratio() const { return ours == limit ? 1 : ours / limit; }
};

using Rows = std::vector<Row>;

enum class Best { Lowest, Highest };

/// Returns a row with the best result of our code, the best result of the code with which it is
/// compared, and the spread of the ratios. Both results are multiplied by `scale`.
Row comparedRow(Heading heading, const Pairs<double>& pairs, Best best, double scale = 1);

/// How a cost grows with the amount of work; one line for each amount.
struct GrowthTable {
  std::string title;
  std::vector<std::string> columns;
  std::vector<std::vector<std::string>> lines;
};

/// Returns a figure with as many decimals as are useful.
std::string figure(double value);

}  // namespace quordalvane::bench
