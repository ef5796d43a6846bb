#pragma once

#include <quordalvane/QuorJournalC.h>

#include <memory>
#include <utility>
#include <vector>

#include "c-interface/Failures.h"
#include "journal/NamedJob.h"

struct QuorJournal {
  const std::shared_ptr<quordalvane::Journal> journal;
};

struct QuorNamedJob {
  QuorNamedJob(std::shared_ptr<quordalvane::Journal> in, quordalvane::NamedJobRequest request,
               std::vector<std::uint8_t> bytes)
      : journal(std::move(in)),
        data(std::move(bytes)),
        job(*journal, std::move(request), data),
        told(job.answer().value_or(quordalvane::NamedJobResult())) {}

  /// Called before the job is run or refused. A second call throws QUOR_USAGE.
  void end() {
    if (std::exchange(hasEnded, true)) {
      throw quordalvane::c::CallFailure(QUOR_USAGE,
                                        "the named job has run already; it runs only once");
    }
  }

  const std::shared_ptr<quordalvane::Journal> journal;
  const std::vector<std::uint8_t> data;
  quordalvane::NamedJob job;
  quordalvane::NamedJobResult told;
  bool hasEnded = false;
};

namespace quordalvane::c {

/// Works as `guarded`, for functions that read or write a journal: a JournalError becomes
/// QUOR_NO_JOURNAL.
template <typename Body>
QuorCode guardedJournal(Body body) noexcept {
  return guarded([&] {
    try {
      return body();
    } catch (const JournalError& error) {
      throw CallFailure(QUOR_NO_JOURNAL, error.what());
    }
  });
}

inline Journal& given(QuorJournal* handle) {
  return *given(handle, "the journal").journal;
}

}  // namespace quordalvane::c
