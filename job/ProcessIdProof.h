#pragma once

#include "job/EndSign.h"

namespace quordalvane {

/// Ends the job with four random characters, and waits until the printer names them. The value ties
/// the answer to this job, whoever else prints on the printer.
class ProcessIdProof final : public EndSign {
 public:
  ProcessIdProof(PortLink& link, PrintResult& result) : EndSign(link, result) {}

 private:
  MaybeSetback makeQuestion(ByteView data, std::vector<std::uint8_t>& question) override;
  bool isSeen() const override { return answers().hasNamed(id_); }

  JobId id_{};
};

/// Four characters that nobody can foresee.
JobId randomProcessId(Platform& platform);

/// The command at which a printer names `id`.
std::vector<std::uint8_t> processIdCommand(const JobId& id);

}  // namespace quordalvane
