#include "bench/Report.h"

#include <algorithm>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <ostream>

namespace quordalvane::bench {
namespace {

using Line = std::vector<std::string>;

std::string ratioText(const Row& row) {
  return figure(row.ratio());
}

std::string spreadText(const Row& row) {
  if (!row.spread) {
    return "";
  }
  return figure(row.spread->median) + " [" + figure(row.spread->lowest) + ", " +
         figure(row.spread->highest) + "]";
}

Line lineOf(const Row& row) {
  const auto& [id, what, goal, unit] = row.heading;
  return {id,   what,           figure(row.ours), figure(row.limit),
          unit, ratioText(row), spreadText(row),  goal};
}

std::vector<std::size_t> widthsOf(const std::vector<Line>& lines) {
  std::vector<std::size_t> widths(lines.front().size());
  for (const Line& line : lines) {
    for (std::size_t i = 0; i < line.size(); ++i) {
      widths[i] = std::max(widths[i], line[i].size());
    }
  }
  return widths;
}

void writeLines(std::ostream& out, const std::vector<Line>& lines) {
  const auto widths = widthsOf(lines);
  for (std::size_t number = 0; number < lines.size(); ++number) {
    for (std::size_t i = 0; i < widths.size(); ++i) {
      out << "| " << std::left << std::setw(static_cast<int>(widths[i])) << lines[number][i] << ' ';
    }
    out << "|\n";
    for (std::size_t i = 0; number == 0 && i < widths.size(); ++i) {
      out << '|' << std::string(widths[i] + 2, '-') << (i + 1 == widths.size() ? "|\n" : "");
    }
  }
}

}  // namespace

void writeTable(std::ostream& out, const Rows& rows) {
  std::vector<Line> lines = {
      {"id", "what", "ours", "limit", "unit", "ratio", "ratios of the pairs", "goal"}};
  std::transform(rows.begin(), rows.end(), std::back_inserter(lines), lineOf);
  writeLines(out, lines);
  for (const Row& row : rows) {
    for (const auto& [name, value] : row.peers) {
      out << row.heading.id << ", " << name << ": " << figure(value) << ' ' << row.heading.unit
          << '\n';
    }
  }
}

void writeTable(std::ostream& out, const GrowthTable& table) {
  std::vector<Line> lines = {table.columns};
  lines.insert(lines.end(), table.lines.begin(), table.lines.end());
  out << '\n' << table.title << "\n\n";
  writeLines(out, lines);
}

void writeJson(std::ostream& out, const Rows& rows) {
  nlohmann::ordered_json json = {{"rows", nlohmann::ordered_json::array()}};
  for (const Row& row : rows) {
    nlohmann::ordered_json entry = {
        {"id", row.heading.id},     {"what", row.heading.what}, {"ours", row.ours},
        {"limit", row.limit},       {"ratio", row.ratio()},     {"goal", row.heading.goal},
        {"unit", row.heading.unit},
    };
    if (!row.peers.empty()) {
      entry["peer"] = row.peers;
    }
    json["rows"].push_back(std::move(entry));
  }
  out << json.dump(1) << '\n';
}

}  // namespace quordalvane::bench
