// Replaces JobsCommand.cpp and NamedPrinting.cpp if the journal's libraries are missing.
#include "tools/quorport/CommandFailure.h"
#include "tools/quorport/NamedPrinting.h"
#include "tools/quorport/Report.h"

namespace quordalvane::tool {
namespace {

[[noreturn]] void refuseJournal() {
  throw CommandFailure(
      ExitCode::NoJournal,
      "this quorport was built without the journal of jobs, which needs SQLite and Nettle; "
      "nothing was sent");
}

}  // namespace

struct NamedPrinting::Recording {};

NamedPrinting::NamedPrinting(const Options& /*options*/, const std::string& /*device*/,
                             ByteView /*data*/, const Surroundings& /*surroundings*/) {
  refuseJournal();
}

NamedPrinting::~NamedPrinting() = default;

const PrintResult* NamedPrinting::answer() const {
  refuseJournal();
}

PrintJob::Options NamedPrinting::recorded(PrintJob::Options /*options*/) {
  refuseJournal();
}

PrintResult NamedPrinting::run(PrintJob& /*job*/) {
  refuseJournal();
}

void NamedPrinting::refuse(const std::string& /*reason*/) {}

void NamedPrinting::addTo(Report& /*report*/) const {}

Report jobs(const Options& /*options*/, const Surroundings& /*surroundings*/) {
  refuseJournal();
}

}  // namespace quordalvane::tool
