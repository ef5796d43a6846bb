#include "bench/Peers.h"

#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>

#include "bench/Measure.h"
#include "bench/Peer.h"

namespace quordalvane::bench {
namespace {

constexpr double microsecond = 1e6;

struct Closed {
  void operator()(FILE* pipe) const { ::pclose(pipe); }
};
using Output = std::unique_ptr<FILE, Closed>;

Output run(const std::string& command) {
  return Output(::popen(command.c_str(), "r"));
}

bool isInstalled(const std::string& program) {
  return std::system(("command -v " + program + " >/dev/null").c_str()) == 0;
}

double read(FILE* output) {
  double seconds = 0;
  if (std::fscanf(output, "%lf", &seconds) != 1) {
    throw std::runtime_error("a peer has measured nothing");
  }
  return seconds;
}

/// Calls `measure` with the TCP port of a printer that answers on every connection. Returns the
/// measured time in microseconds.
template <typename Measure>
double microsecondsAt(Measure measure) {
  const auto endpoint = makeEndpoint(Medium::Tcp);
  Peer peer(Core::First);
  peer.answerAll(*endpoint);
  const double seconds = measure(std::to_string(tcpPort(*endpoint)));
  ::close(endpoint->connect());  // ends `answerAll`, because no byte was sent
  return seconds * microsecond;
}

/// Returns the time that the script prints. The script measures each status query, so the start of
/// the script does not count.
double secondsOfScript(const std::string& port) {
  return read(run("python3 " QUOR_BENCH_PEERS "/status_script.py " + port + " 1000").get());
}

/// Returns the median time from the start of the command until the command has written three status
/// bytes of the printer to its standard output.
double secondsOfCommand(const std::string& port, const std::string& program) {
  constexpr int runs = 5;
  const std::string command = QUOR_BENCH_PEERS "/status_command.sh " + program + " " + port;
  Output output;
  return median(secondsOfEach(runs, [&] {
    output = run(command);
    std::array<char, 3> replies{};
    if (std::fread(replies.data(), 1, replies.size(), output.get()) != replies.size()) {
      throw std::runtime_error(program + " has brought no status");
    }
  }));
}

}  // namespace

std::map<std::string, double> measurePeers() {
  std::map<std::string, double> peers;
  if (isInstalled("python3")) {
    peers["Python socket script"] = microsecondsAt(secondsOfScript);
  }
  for (const std::string program : {"socat", "nc"}) {
    if (isInstalled(program)) {
      peers["shell with " + program] =
          microsecondsAt([&](const std::string& port) { return secondsOfCommand(port, program); });
    }
  }
  return peers;
}

}  // namespace quordalvane::bench
