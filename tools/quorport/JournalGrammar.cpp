#include "tools/quorport/JournalGrammar.h"

#include <CLI/CLI.hpp>
#include <limits>

namespace quordalvane::tool {
namespace {

constexpr auto jobsFooter =
    "A job is in the journal if it was printed with --job. Its outcome is one of these words:\n"
    "printed, unconfirmed, refused, or printing (a process is still printing the job). If the\n"
    "printing process ends too early, the outcome is unconfirmed. A job that was removed from the\n"
    "journal is printed if it is sent again, even if it is on paper already.\n";

void addJournal(CLI::App& app, std::optional<std::string>& journal) {
  app.add_option("--journal", journal,
                 "the file of the named jobs (default $XDG_STATE_HOME/quorport/jobs.db)")
      ->type_name("FILE")
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
}

}  // namespace

void addJournalOptions(CLI::App& app, PrintOptions& options) {
  CLI::Option* const job =
      app.add_option(
             "--job", options.job,
             "print the job under this name, and only once, even if the command is repeated")
          ->type_name("NAME")
          ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
  addJournal(app, options.journal);
  app.add_flag("--again", options.again,
               "print the named job again even if it may already be on paper")
      ->needs(job);
  app.get_option("--journal")->needs(job);
}

void addJobsOptions(CLI::App& app, Options& all) {
  JobsOptions& options = all.jobs;
  addJournal(app, options.journal);
  app.add_option("--forget", options.forget, "remove the job of this name from the journal")
      ->type_name("NAME")
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
  app.add_option("--older-than", options.olderThan,
                 "remove the jobs whose last attempt is more than this number of days ago")
      ->type_name("DAYS")
      ->check(CLI::Range(0U, std::numeric_limits<std::uint32_t>::max()))
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
  app.footer(jobsFooter);
}

}  // namespace quordalvane::tool
