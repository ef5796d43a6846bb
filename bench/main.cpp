#include <sys/resource.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <fstream>
#include <iostream>

#include "bench/Groups.h"
#include "bench/Report.h"

namespace {

using namespace quordalvane::bench;

struct Group {
  const char* id;
  Rows (*measure)();
};

// The groups that measure memory are first. Otherwise they would use the freed memory of earlier
// groups again, and measure too little.
constexpr std::array groups = {
    Group{"B9", idlePorts},
    Group{"B21", longPage},
    Group{"B1", lineStatusOverTcp},
    Group{"B2", escposStatusOverTcp},
    Group{"B3", lineStatusElsewhere},
    Group{"B4", printData},
    Group{"B5", reading},
    Group{"B6", logStatementOff},
    Group{"B7", logStatementOn},
    Group{"B8", stalledSink},
    Group{"B10", lateReplies},
    Group{"B11", silentDevice},
    Group{"B12", openAndClose},
    Group{"B13", virtualTime},
    Group{"B14", systemCalls},
    Group{"B19", journal},
    Group{"B15", confirmedReceipts},
    Group{"B17", wholeCommands},
    Group{"B18", signsOfSlowPrinters},
    Group{"B20", receiptPictures},
};

constexpr std::array growths = {growingPorts, growingJobs, growingLoggers};

struct Options {
  bool json = false;
  std::string picture;
  std::vector<std::string> only;
};

bool isWanted(const Options& options, const std::string& id) {
  return options.only.empty() ||
         std::find(options.only.begin(), options.only.end(), id) != options.only.end();
}

Rows measure(const Options& options) {
  Rows rows;
  for (const Group& group : groups) {
    if (isWanted(options, group.id)) {
      std::cerr << "measuring " << group.id << '\n';
      const Rows measured = group.measure();
      rows.insert(rows.end(), measured.begin(), measured.end());
    }
  }
  const auto number = [](const Row& row) { return std::stoi(row.heading.id.substr(1)); };
  std::stable_sort(rows.begin(), rows.end(),
                   [&](const Row& a, const Row& b) { return number(a) < number(b); });
  return rows;
}

void report(const Options& options, const Rows& rows) {
  if (!options.picture.empty()) {
    std::ofstream picture(options.picture);
    writePicture(picture, rows);
  }
  if (options.json) {
    writeJson(std::cout, rows);
    return;
  }
  writeTable(std::cout, rows);
  if (isWanted(options, "growth")) {
    for (const auto growth : growths) {
      writeTable(std::cout, growth());
    }
  }
}

/// Raises the priority of this process. Otherwise other work on the machine would lengthen the
/// longest of a thousand calls. The other figures do not need this: our code and the code for
/// comparison are measured alternately, and other work affects both measurements alike. The system
/// may refuse a higher priority to an ordinary user.
void standBackForNobody() {
  ::setpriority(PRIO_PROCESS, 0, -20);
}

}  // namespace

int main(int count, char** arguments) {
  Options options;
  CLI::App app("Measures the library beside the bare limit of this machine.");
  app.add_flag("--json", options.json, "print the rows as JSON");
  app.add_option("--picture", options.picture, "also draw the rows into this SVG file");
  app.add_option("--only", options.only,
                 "measure these alone: B1 to B21, growth; B16 is measured with B15");
  CLI11_PARSE(app, count, arguments);
  standBackForNobody();
  report(options, measure(options));
  return 0;
}
