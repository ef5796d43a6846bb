#pragma once

#include "job/EndSign.h"

namespace quordalvane {

/// Ends the job with a process ID of four random characters, and waits until the printer sends it
/// back. The ID shows that the answer belongs to this job, even if other programs print on the same
/// printer.
class ProcessIdProof final : public EndSign {
 public:
  ProcessIdProof(PortLink& link, PrintResult& result) : EndSign(link, result) {}

 private:
  MaybeSetback makeQuestion(ByteView data, std::vector<std::uint8_t>& question) override;
  bool isSeen() const override { return answers().hasNamed(id_); }

  JobId id_{};
};

/// Returns four characters that nobody can predict.
JobId randomProcessId(Platform& platform);

/// Returns the command that makes a printer send `id` back.
std::vector<std::uint8_t> processIdCommand(const JobId& id);

}  // namespace quordalvane
