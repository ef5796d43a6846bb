// A whole run of the command, compared with a receipt on a port that is already open.

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/Endpoint.h"
#include "bench/Groups.h"
#include "bench/OpenPort.h"
#include "bench/ReceiptKinds.h"
#include "job/PrintJob.h"

namespace quordalvane::bench {
namespace {

constexpr double pauseOfOpen = 0.1;  // seconds
constexpr double millisecond = 1e3;

std::vector<std::uint8_t> receipt() {
  std::ifstream file(QUOR_BENCH_RECEIPT, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// Starts `quorport print` and discards its output.
pid_t startPrint(const std::string& device, const ReceiptKind& kind) {
  const std::string emulation = kind.emulation == ZKEmulationESCPOS ? "escpos" : "line";
  std::vector<std::string> words = {QUOR_BENCH_COMMAND, "-d", device, "-e", emulation, "print",
                                    QUOR_BENCH_RECEIPT};
  std::vector<char*> arguments;
  for (std::string& word : words) {
    arguments.push_back(word.data());
  }
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  ::posix_spawn_file_actions_init(&actions);
  ::posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  pid_t process = 0;
  const int error =
      ::posix_spawn(&process, QUOR_BENCH_COMMAND, &actions, nullptr, arguments.data(), environ);
  ::posix_spawn_file_actions_destroy(&actions);
  return error == 0 ? process : throw std::runtime_error("the command cannot be started");
}

double secondsOfCommand(Endpoint& endpoint, const ReceiptKind& kind) {
  return secondsOf([&] {
    const pid_t process = startPrint(endpoint.device() + kind.keys, kind);
    const ReceiptPrinter printer(endpoint.accept(), Core::First, kind.confirms);
    int status = 0;
    ::waitpid(process, &status, 0);
    if (status != 0) {
      throw std::runtime_error("the command has not confirmed a receipt");
    }
  });
}

Row rowOf(const ReceiptKind& kind) {
  constexpr int runs = 5;
  const auto endpoint = makeEndpoint(Medium::Tcp);
  const auto openEndpoint = makeEndpoint(Medium::Tcp);
  // The printer is destroyed after `port`, because the printer's destructor waits until the port
  // has closed the connection.
  std::unique_ptr<ReceiptPrinter> printer;
  OpenPort port(openEndpoint->device(), kind.emulation);
  printer = std::make_unique<ReceiptPrinter>(openEndpoint->accept(), Core::First, kind.confirms);
  const auto data = receipt();
  const auto print = [&] {
    if (PrintJob(port.shared()).run(data).outcome != PrintOutcome::Printed) {
      throw std::runtime_error("a receipt was not confirmed");
    }
  };
  print();  // the first print is not measured, because it asks how the printer confirms jobs
  const auto pairs = alternate(
      [&] {
        Figures seconds;
        for (int i = 0; i < runs; ++i) {
          seconds.push_back(secondsOfCommand(*endpoint, kind));
        }
        return median(seconds);
      },
      [&] { return median(secondsOfEach(runs, print)) + pauseOfOpen; });
  return comparedRow({"B17", std::string("quorport print, the whole process, ") + kind.name,
                      "<= limit + 20 ms", "ms"},
                     pairs, Best::Lowest, millisecond);
}

}  // namespace

Rows wholeCommands() {
  Rows rows;
  for (const ReceiptKind& kind : receiptKinds) {
    rows.push_back(rowOf(kind));
  }
  return rows;
}

}  // namespace quordalvane::bench
