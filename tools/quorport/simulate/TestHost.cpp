#include "tools/quorport/simulate/TestHost.h"

#include <sys/socket.h>

#include <array>
#include <cerrno>
#include <string>
#include <system_error>

namespace quordalvane::tool {
namespace {

using posix::Descriptor;

// The printer's end of a connection within this process.
class TestLine : public Line {
 public:
  using Line::Line;
  void endOutput() override {}
  bool hasSettled() override { return true; }
  void resetOnClose() override {}
  bool wasReset() const override { return false; }
};

constexpr auto initialise = "\x1b@";
constexpr auto centred = "\x1b\x61\x01";
constexpr auto left = "\x1b\x61";  // followed by a zero byte
constexpr auto doubled = "\x1d\x21\x11";
constexpr auto single = "\x1d\x21";  // followed by a zero byte
constexpr auto bold = "\x1b\x45\x01";
constexpr auto notBold = "\x1b\x45";  // followed by a zero byte
// A feed of four lines. The command is a feed only in ESC/POS; the commands before it show that the
// job is ESC/POS.
constexpr auto fed = "\x1b\x64\x04";
constexpr auto fullCut = "\x1d\x56";  // followed by a zero byte

std::string line(const std::string& name, const std::string& value) {
  constexpr std::size_t column = 14;
  return name + std::string(column - name.size(), ' ') + value + "\n";
}

// Returns a test receipt, which uses only commands that every printer profile knows.
std::string receiptOf(const simulator::PrinterState& printer) {
  const std::string zero(1, '\0');
  std::string text = std::string(initialise) + centred + doubled + "TEST\n" + single + zero;
  text += std::string(bold) + printer.maker() + " " + printer.modelName() + "\n" + notBold + zero;
  text += left + zero + line("firmware", printer.firmware());
  text += line("serial number", printer.serialNumber());
  text += line("paper", std::to_string(printer.paperMillimetres()) + " mm");
  text += line("proofs", printer.dialect.proofs.text());
  for (char c = ' '; c <= '~'; ++c) {
    text += c;
  }
  return text + "\n" + fed + fullCut + zero;
}

}  // namespace

std::unique_ptr<Line> testHost(const simulator::PrinterState& printer) {
  std::array<int, 2> ends{};
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends.data()) != 0) {
    throw std::system_error(errno, std::generic_category());
  }
  auto atPrinter = std::make_unique<TestLine>(Descriptor(ends[0], Descriptor::Kind::Socket));
  const Descriptor atHost(ends[1], Descriptor::Kind::Socket);
  const std::string receipt = receiptOf(printer);
  atHost.send(reinterpret_cast<const std::uint8_t*>(receipt.data()), receipt.size());
  return atPrinter;
}

}  // namespace quordalvane::tool
