#include <optional>
#include <utility>

#include "c-interface/Buffers.h"
#include "c-interface/Handles.h"
#include "c-interface/SameNumber.h"

using namespace quordalvane;
using namespace quordalvane::c;

namespace {

static_assert(sameNumber(QUOR_PRINTED, PrintOutcome::Printed));
static_assert(sameNumber(QUOR_UNCONFIRMED, PrintOutcome::Unconfirmed));
static_assert(sameNumber(QUOR_REFUSED, PrintOutcome::Refused));
static_assert(sameNumber(QUOR_OBSTACLE_NONE, PrintObstacle::None));
static_assert(sameNumber(QUOR_OBSTACLE_PRINTER_NOT_READY, PrintObstacle::PrinterNotReady));
static_assert(sameNumber(QUOR_OBSTACLE_LINK_LOST, PrintObstacle::LinkLost));
static_assert(sameNumber(QUOR_OBSTACLE_CANCELLED, PrintObstacle::Cancelled));
static_assert(sameNumber(QUOR_OBSTACLE_EXCHANGE_FAILED, PrintObstacle::ExchangeFailed));
static_assert(sameNumber(QUOR_OBSTACLE_NO_PROOF, PrintObstacle::NoProof));

/// Returns the proof with this number. Returns null for Auto: the job then uses the `proof=` of the
/// device text.
std::optional<ProofKind> proofOf(std::int32_t number) {
  const auto proof = proofNumbered(number);
  if (!proof) {
    throw CallFailure(QUOR_USAGE, "no kind of proof has the number " + std::to_string(number) +
                                      "; the constants QUOR_PROOF_... are the valid numbers");
  }
  return proof == ProofKind::Auto ? std::nullopt : proof;
}

const PrintResult& resultOf(QuorPrintJob* job) {
  return given(job, "the job").result;
}

}  // namespace

QuorCode quor_print_job_create(QuorPort* port, int32_t proof, QuorProgress progress, void* context,
                               QuorPrintJob** job) {
  return guarded([&] {
    given(job, "the pointer that receives the job") = nullptr;
    QuorPrintJob::Progress told;
    if (progress != nullptr) {
      told = [progress, context](const PrintProgress& now) {
        progress(context, now.bytesAccepted, now.bytesTotal);
      };
    }
    *job = new QuorPrintJob(given(port, "the port").port, proofOf(proof), std::move(told));
  });
}

void quor_print_job_free(QuorPrintJob* job) {
  delete job;
}

QuorCode quor_print_job_run(QuorPrintJob* job, const void* data, size_t size) {
  return guarded([&] {
    const auto bytes = copyOf(data, size);
    given(job, "the job").begin(size);
    job->result = job->job.run(bytes);
  });
}

void quor_print_job_cancel(QuorPrintJob* job) {
  if (job != nullptr) {
    job->job.cancel();
  }
}

int32_t quor_print_job_outcome(QuorPrintJob* job) {
  return answered([&] { return static_cast<int32_t>(resultOf(job).outcome); });
}

int32_t quor_print_job_obstacle(QuorPrintJob* job) {
  return answered([&] { return static_cast<int32_t>(resultOf(job).obstacle); });
}

int64_t quor_print_job_result_code(QuorPrintJob* job) {
  return answered([&] { return resultOf(job).resultCode; });
}

uint64_t quor_print_job_bytes_total(QuorPrintJob* job) {
  return answered([&] { return resultOf(job).bytesTotal; });
}

int32_t quor_print_job_proof(QuorPrintJob* job) {
  return answered([&] { return static_cast<std::int32_t>(resultOf(job).proof); });
}

QuorCode quor_print_job_waits_for(QuorPrintJob* job, char* text, size_t capacity, size_t* length) {
  return guarded([&] {
    return copyText(given(job, "the job").waitsFor, {text, capacity, length});
  });
}

uint64_t quor_print_job_bytes_accepted(QuorPrintJob* job) {
  return answered([&] { return resultOf(job).bytesAccepted; });
}

QuorCode quor_print_job_status(QuorPrintJob* job, QuorPrinterStatus_2* status) {
  return guarded([&]() -> QuorCode {
    given(status, "the status");
    const auto& last = resultOf(job).status;
    if (!last) {
      return QUOR_NONE;
    }
    *status = *last;
    return QUOR_OK;
  });
}

QuorCode quor_print_job_reason(QuorPrintJob* job, char* text, size_t capacity, size_t* length) {
  return guarded([&] { return copyText(resultOf(job).reason, {text, capacity, length}); });
}

QuorCode quor_print_job_advice(QuorPrintJob* job, char* text, size_t capacity, size_t* length) {
  return guarded([&] { return copyText(resultOf(job).advice, {text, capacity, length}); });
}
