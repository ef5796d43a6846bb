// A printer at the end of a USB cable: carries bytes between the cable and the socket of a virtual
// printer. If the program is killed, the cable is pulled. Without a socket the printer takes all
// bytes and answers nothing.
//
//     usb_printer [KEY=VALUE …]
//
//     controller=NAME    the controller at the printer's end of the cable; dummy_udc.0 unless given
//     socket=PATH        the socket of the virtual printer
//     carried=FILE       the file for the count of the bytes that arrived
//     port-status=HEX    18 ready, 38 paper out, 10 error
//     vendor=, product=, serial=, id=, protocol=1|2, interface=second    see UsbIdentity
//     empty-packets=yes  sends an empty packet before and after each answer
//     pull-after=COUNT   pulls the cable after COUNT bytes
//     stall-after=COUNT  stalls once after COUNT bytes
//     hold-after=COUNT   takes nothing more after COUNT bytes
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <exception>
#include <fstream>
#include <map>
#include <stdexcept>
#include <string>
#include <thread>

#include "tests/machine/gadget/UsbGadget.h"

namespace quordalvane::machine {
namespace {

class Settings {
 public:
  Settings(int count, char** arguments) {
    for (int i = 1; i < count; ++i) {
      const std::string text = arguments[i];
      const auto equals = text.find('=');
      if (equals == std::string::npos) {
        throw std::invalid_argument(text + ": KEY=VALUE is right");
      }
      values_[text.substr(0, equals)] = text.substr(equals + 1);
    }
  }

  std::string text(const std::string& key, const std::string& usual = "") const {
    const auto found = values_.find(key);
    return found == values_.end() ? usual : found->second;
  }

  std::size_t count(const std::string& key) const {
    return values_.contains(key) ? std::stoul(text(key)) : SIZE_MAX;
  }

 private:
  std::map<std::string, std::string> values_;
};

UsbIdentity identityIn(const Settings& settings) {
  UsbIdentity identity;
  identity.vendor = settings.text("vendor", identity.vendor);
  identity.product = settings.text("product", identity.product);
  identity.serial = settings.text("serial");
  identity.id = settings.text("id", identity.id);
  identity.protocol = settings.text("protocol") == "1" ? 1 : identity.protocol;
  identity.isSecondInterface = settings.text("interface") == "second";
  return identity;
}

int connectTo(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  const int number = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  const auto* const generic = reinterpret_cast<const sockaddr*>(&address);
  if (::connect(number, generic, sizeof address) != 0) {
    throw std::runtime_error(path + ": no virtual printer listens");
  }
  return number;
}

class Printer {
 public:
  explicit Printer(const Settings& settings)
      : settings_(settings),
        gadget_(identityIn(settings), settings.text("controller", "dummy_udc.0")),
        socket_(settings.text("socket").empty() ? -1 : connectTo(settings.text("socket"))) {
    gadget_.setPortStatus(
        static_cast<std::uint8_t>(std::stoul(settings.text("port-status", "18"), nullptr, 16)));
  }

  void run() {
    gadget_.plugIn();
    std::thread answering([this] { carryAnswers(); });
    carryJobs();
    gadget_.pull();
    ::shutdown(socket_, SHUT_RDWR);
    answering.join();
  }

 private:
  // Sends the host's bytes to the virtual printer. Returns when the cable is out, or when as many
  // bytes have arrived as the setting `pull-after` says.
  void carryJobs() {
    std::array<std::uint8_t, UsbGadget::packetSize> packet;
    std::size_t carried = 0;
    bool hasStalled = false;
    for (auto length = gadget_.take(packet.data()); length >= 0;
         length = gadget_.take(packet.data())) {
      if (socket_ >= 0) {
        ::send(socket_, packet.data(), static_cast<std::size_t>(length), MSG_NOSIGNAL);
      }
      carried += static_cast<std::size_t>(length);
      std::ofstream(settings_.text("carried", "/dev/null")) << carried << "\n";
      if (carried >= settings_.count("pull-after")) {
        return;
      }
      if (carried >= settings_.count("hold-after")) {
        ::poll(nullptr, 0, -1);
      }
      if (carried >= settings_.count("stall-after") && !hasStalled) {
        hasStalled = true;
        gadget_.stall();
      }
    }
  }

  void carryAnswers() {
    const bool hasEmptyPackets = settings_.text("empty-packets") == "yes";
    std::array<std::uint8_t, 1024> answer;
    for (auto length = ::read(socket_, answer.data(), answer.size()); length > 0;
         length = ::read(socket_, answer.data(), answer.size())) {
      if (hasEmptyPackets) {
        gadget_.say({});
      }
      gadget_.say({answer.data(), static_cast<std::size_t>(length)});
      if (hasEmptyPackets) {
        gadget_.say({});
      }
    }
  }

  const Settings& settings_;
  UsbGadget gadget_;
  const int socket_;
};

}  // namespace
}  // namespace quordalvane::machine

int main(int count, char** arguments) try {
  const quordalvane::machine::Settings settings(count, arguments);
  quordalvane::machine::Printer(settings).run();
} catch (const std::exception& error) {
  std::fprintf(stderr, "usb_printer: %s\n", error.what());
  return 1;
}
